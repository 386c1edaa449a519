/* Grammar of DBC files, as LALR(1): 23 places in a fixed order.
 *
 * Actions run as soon as the parser is sure, with default reductions: a statement that ends in ";"
 * acts at its ";", an "SG_" line at the token behind its receivers. Lists are left-recursive, so
 * that the stack stays flat whatever the file holds. Texts of tokens live until their statement
 * ends.
 *
 * Three kinds of numbers: a small count is T_SHORT; a whole number (`whole`) T_SHORT or T_ULONG; a
 * `real` any number with an optional sign.
 */

%require "3.8"
%language "C"
%define api.prefix {zelk_}
%define api.header.include {"text/token_codes.hpp"}
%define api.pure full
%define api.value.type {zelk::SemanticValue}
%define lr.type lalr
%define lr.default-reduction most
%define parse.error simple
%expect 0

%parse-param { zelk::Reader& reader }
%lex-param { zelk::Reader& reader }

%code requires {
namespace zelk {
class Reader;
union SemanticValue;
}
}

%code {
#include "reader/reader.hpp"

/* Nothing in the grammar nests, so the stack of the parser needs no more than this. */
#define YYINITDEPTH 1500
#define YYMAXDEPTH 1500

namespace {

/// For `ZELK_error` the parser would report nothing; a token that no rule takes is a syntax error.
int zelk_lex(zelk::SemanticValue* value, zelk::Reader& reader) {
  const int code = reader.context.lexer.next(*value);
  return code == ZELK_error ? ZELK_UNDEF : code;
}

/// The parser itself reports a syntax error, or a full stack as "memory exhausted".
[[noreturn]] void zelk_error(zelk::Reader& reader, const char* message) {
  const bool is_syntax_error = message[0] == 's';
  reader.context.fail(ZELK_ERR_SYNTAX,
                      is_syntax_error ? zelk::kSyntaxErrorText : "parser stack overflow");
}

}  // namespace
}

/* The one place of the codes: all others use the names, of the generated "text/token_codes.hpp". */
%token <integer> T_SHORT 258 T_ULONG 259
%token <real> T_DOUBLE 260
%token <text> T_IDENT 261 T_STRING 262
%token T_BO 263 T_SG 264 T_BU 265 T_BS 266 T_VERSION 273 T_EV 275
%token T_NS 276 T_NS_DESC 277 T_CM 278 T_BA_DEF 279 T_BA 280
%token T_INT 281 T_HEX 282 T_FLOAT 283 T_STRING_TYPE 284 T_ENUM 285
%token T_VAL 286 T_CAT_DEF 287 T_CAT 288 T_FILTER 289 T_BA_DEF_DEF 290 T_EV_DATA 291
%token T_SGTYPE 292 T_SGTYPE_VAL 293 T_BA_DEF_SGTYPE 294 T_BA_SGTYPE 295 T_SIG_TYPE_REF 296
%token T_VAL_TABLE 297 T_SIG_GROUP 298 T_SIG_VALTYPE 299 T_SIGTYPE_VALTYPE 300 T_BO_TX_BU 301
%token T_BA_DEF_REL 302 T_BA_REL 303 T_BA_DEF_DEF_REL 304
%token T_BU_SG_REL 305 T_BU_EV_REL 306 T_BU_BO_REL 307 T_SG_MUL_VAL 308

%type <integer> whole sign
%type <kind> object_kind relation_kind named_relation default_kind
%type <whole> signed_whole
%type <real> real magnitude default_number
%type <text> indicator table_name
%type <segment> type_segment

%%

file: version new_symbols bit_timings nodes value_tables messages transmitter_lists variables
      data_variables signal_types comments definitions type_definitions defaults values descriptions
      category_definitions category_assignments filters type_references groups value_types
      multiplexor_ranges
      { reader.accept(); }
    ;

/* --- Numbers --- */

whole: T_SHORT | T_ULONG ;

signed_whole: whole     { $$ = $1; }
            | '+' whole { $$ = $2; }
            | '-' whole { $$ = -static_cast<std::int64_t>($2); }
            ;

magnitude: T_SHORT  { $$ = $1; }
         | T_ULONG  { $$ = $1; }
         | T_DOUBLE { $$ = $1; }
         ;

/* Without `magnitude` in it for numbers that have no sign: this is the rule reduced most often. */
real: T_SHORT       { $$ = $1; }
    | T_ULONG       { $$ = $1; }
    | T_DOUBLE      { $$ = $1; }
    | '+' magnitude { $$ = $2; }
    | '-' magnitude { $$ = -$2; }
    ;

/* --- Places 1 to 5: version, new symbols, bit timing, nodes, value tables --- */

version: %empty
       | T_VERSION T_STRING { reader.frame.version($2); }
       ;

new_symbols: %empty
           | T_NS ':' new_symbol_list
           ;

new_symbol_list: %empty
               | new_symbol_list listed_keyword
               | new_symbol_list T_IDENT
                 { if (!reader.context.lexer.announce($2.view())) YYABORT; }
               ;

listed_keyword: T_NS_DESC | T_CM | T_BA_DEF | T_BA | T_VAL | T_CAT_DEF | T_CAT | T_FILTER
              | T_BA_DEF_DEF | T_EV_DATA | T_SGTYPE | T_SGTYPE_VAL | T_BA_DEF_SGTYPE | T_BA_SGTYPE
              | T_SIG_TYPE_REF | T_VAL_TABLE | T_SIG_GROUP | T_SIG_VALTYPE | T_SIGTYPE_VALTYPE
              | T_BO_TX_BU | T_BA_DEF_REL | T_BA_REL | T_BA_DEF_DEF_REL | T_BU_SG_REL | T_BU_EV_REL
              | T_BU_BO_REL | T_SG_MUL_VAL
              ;

bit_timings: T_BS ':' bit_timing_list { reader.frame.end_bit_timings(); } ;

bit_timing_list: %empty
               | bit_timing_list T_SHORT ':' T_SHORT ',' T_SHORT
                 { reader.frame.bit_timing($2, $4, $6); }
               ;

nodes: T_BU ':' node_list ;

node_list: %empty
         | node_list T_IDENT { reader.frame.node($2); }
         ;

value_tables: %empty
            | value_tables T_VAL_TABLE T_IDENT description_list ';'
              { reader.frame.value_table($3); }
            ;

description_list: %empty
                | description_list real T_STRING { reader.frame.value_description($2, $3); }
                ;

/* --- Places 6 and 7: messages with their signals, transmitters --- */

messages: %empty
        | messages message_head signals { reader.messages.end_message(); }
        ;

message_head: T_BO whole T_IDENT ':' T_SHORT T_IDENT
              { reader.messages.begin_message($2, $3, $5, $6); }
            ;

signals: %empty
       | signals T_SG T_IDENT indicator ':' T_SHORT '|' segments sign '(' real ',' real ')'
         '[' real '|' real ']' T_STRING comma_names
         { reader.messages.signal({$3, $4, $6, $9 != 0, {$11, $13}, {$16, $18}, $20}); }
       ;

indicator: %empty { $$ = {nullptr, 0}; }
         | T_IDENT
         ;

segments: T_SHORT                          { reader.messages.segments.add($1); }
        | T_SHORT '@' T_SHORT              { reader.messages.segments.add($1, $3); }
        | segments ':' T_SHORT             { reader.messages.segments.add($3); }
        | segments ':' T_SHORT '@' T_SHORT { reader.messages.segments.add($3, $5); }
        ;

sign: %empty { $$ = 0; }
    | '+'    { $$ = 0; }
    | '-'    { $$ = 1; }
    ;

comma_names: T_IDENT                 { reader.context.names.push_back($1); }
           | comma_names ',' T_IDENT { reader.context.names.push_back($3); }
           ;

blank_names: %empty
           | blank_names T_IDENT { reader.context.names.push_back($2); }
           ;

transmitter_lists: %empty
                 | transmitter_lists T_BO_TX_BU whole ':' transmitters ';'
                   { reader.messages.transmitters($3); }
                 ;

transmitters: %empty
            | comma_names
            ;

/* --- Places 8 to 11: environment variables, signal types, comments --- */

variables: %empty
         | variables T_EV T_IDENT ':' whole '[' real '|' real ']' T_STRING real whole T_IDENT
           comma_names ';'
           { reader.objects.variable({$3, $5, {$7, $9}, $11, $12, $13, $14}); }
         ;

data_variables: %empty
              | data_variables T_EV_DATA T_IDENT ':' whole ';'
                { reader.objects.data_variable($3, $5); }
              ;

signal_types: %empty
            | signal_types signal_type
            ;

signal_type: T_SGTYPE T_IDENT ':' type_segment sign '(' real ',' real ')' '[' real '|' real ']'
             T_STRING default_number table_name optional_end
             {
               reader.objects.signal_type(
                   {$2, $4, $5 != 0, {$7, $9}, {$12, $14}, $16, $17, $18});
             }
           ;

type_segment: whole             { $$ = {$1, 1}; }
            | whole '@' T_SHORT { $$ = {$1, $3}; }
            ;

default_number: %empty { $$ = 0.0; }
              | real
              ;

table_name: %empty { $$ = {nullptr, 0}; }
          | T_IDENT
          ;

optional_end: %empty
            | ';'
            ;

comments: %empty
        | comments T_CM T_STRING ';'                    { reader.texts.comment($3); }
        | comments T_CM T_BU T_IDENT T_STRING ';'       { reader.texts.node_comment($4, $5); }
        | comments T_CM T_BO whole T_STRING ';'         { reader.texts.message_comment($4, $5); }
        | comments T_CM T_SG whole T_IDENT T_STRING ';' { reader.texts.signal_comment($4, $5, $6); }
        | comments T_CM T_EV T_IDENT T_STRING ';'       { reader.texts.variable_comment($4, $5); }
        | comments T_CM T_SGTYPE T_IDENT T_STRING ';'   { reader.texts.type_comment($4, $5); }
        ;

/* --- Places 12 to 15: attributes --- */

definitions: %empty
           | definitions T_BA_DEF object_kind T_STRING type ';'
             { reader.attributes.define($3, $4); }
           | definitions relation_definition
           ;

object_kind: %empty { $$ = ZELK_OBJ_NETWORK; }
           | T_BU   { $$ = ZELK_OBJ_NODE; }
           | T_BO   { $$ = ZELK_OBJ_MESSAGE; }
           | T_SG   { $$ = ZELK_OBJ_SIGNAL; }
           | T_EV   { $$ = ZELK_OBJ_ENVVAR; }
           ;

relation_definition: T_BA_DEF_REL relation_kind T_STRING type ';'
                     { reader.attributes.define($2, $3); }
                   ;

relation_kind: %empty { $$ = ZELK_OBJ_REL_SIGNAL; }
             | named_relation
             ;

named_relation: T_BU_SG_REL { $$ = ZELK_OBJ_REL_SIGNAL; }
              | T_BU_BO_REL { $$ = ZELK_OBJ_REL_MESSAGE; }
              | T_BU_EV_REL { $$ = ZELK_OBJ_REL_ENVVAR; }
              ;

default_kind: %empty { $$ = zelk::kAnyRelationKind; }
            | named_relation
            ;

type: T_INT range         { reader.attributes.type(ZELK_ATTR_INT); }
    | T_HEX range         { reader.attributes.type(ZELK_ATTR_HEX); }
    | T_FLOAT range       { reader.attributes.type(ZELK_ATTR_FLOAT); }
    | T_STRING_TYPE       { reader.attributes.type(ZELK_ATTR_STRING); }
    | T_ENUM              { reader.attributes.type(ZELK_ATTR_ENUM); }
    | T_ENUM items        { reader.attributes.type(ZELK_ATTR_ENUM); }
    ;

range: %empty
     | real real { reader.attributes.range({$1, $2}); }
     ;

items: T_STRING           { reader.attributes.item($1); }
     | items ',' T_STRING { reader.attributes.item($3); }
     ;

type_definitions: %empty
                | type_definition_list
                ;

/* The writer puts relation definitions behind those for signal types. */
type_definition_list: type_definition
                    | type_definition_list type_definition
                    | type_definition_list relation_definition
                    ;

type_definition: T_BA_DEF_SGTYPE T_STRING ';' { reader.attributes.define_for_signal_types($2); } ;

defaults: %empty
        | defaults T_BA_DEF_DEF T_STRING optional_value ';'
          { reader.attributes.set_default(zelk::kAnyOrdinaryKind, $3); }
        | defaults T_BA_DEF_DEF_REL default_kind T_STRING optional_value ';'
          { reader.attributes.set_default($3, $4); }
        ;

optional_value: %empty { reader.attributes.no_value(); }
              | value
              ;

value: real     { reader.attributes.number($1); }
     | T_STRING { reader.attributes.text($1); }
     ;

word_or_value: value
             | T_IDENT { reader.attributes.text($1); }
             ;

values: %empty
      | values T_BA T_STRING value ';'                    { reader.attributes.network_value($3); }
      | values T_BA T_STRING T_BU T_IDENT value ';'       { reader.attributes.node_value($3, $5); }
      | values T_BA T_STRING T_BO whole value ';'
        { reader.attributes.message_value($3, $5); }
      | values T_BA T_STRING T_SG whole T_IDENT value ';'
        { reader.attributes.signal_value($3, $5, $6); }
      | values T_BA T_STRING T_EV T_IDENT value ';'
        { reader.attributes.variable_value($3, $5); }
      | values T_BA_SGTYPE T_STRING T_SGTYPE T_IDENT word_or_value ';'
        { reader.attributes.type_value($3, $5); }
      | values T_BA_REL T_STRING T_BU_SG_REL T_IDENT T_SG whole T_IDENT word_or_value ';'
        { reader.attributes.node_signal_value($3, $5, $7, $8); }
      | values T_BA_REL T_STRING T_BU_BO_REL T_IDENT whole word_or_value ';'
        { reader.attributes.node_message_value($3, $5, $6); }
      | values T_BA_REL T_STRING T_BU_EV_REL T_IDENT T_IDENT word_or_value ';'
        { reader.attributes.node_variable_value($3, $5, $6); }
      ;

/* --- Places 16 to 19: value descriptions, categories, filter --- */

descriptions: %empty
            | descriptions T_VAL whole T_IDENT description_list ';'
              { reader.texts.signal_descriptions($3, $4); }
            | descriptions T_VAL T_IDENT description_list ';'
              { reader.texts.variable_descriptions($3); }
            ;

category_definitions: %empty
                    | category_definitions T_CAT_DEF signed_whole T_IDENT whole ';'
                      { reader.objects.define_category($3, $4, $5); }
                    ;

category_assignments: %empty
                    | category_assignments T_CAT T_BU T_IDENT signed_whole ';'
                      { reader.objects.node_category($4, $5); }
                    | category_assignments T_CAT T_BO whole signed_whole ';'
                      { reader.objects.message_category($4, $5); }
                    | category_assignments T_CAT T_EV T_IDENT signed_whole ';'
                      { reader.objects.variable_category($4, $5); }
                    ;

filters: %empty
       | filters T_FILTER signed_whole T_CAT filter_categories T_BU filter_nodes ';'
         { reader.objects.filter($3); }
       ;

filter_categories: %empty
                 | filter_categories signed_whole { reader.objects.filter_category($2); }
                 ;

filter_nodes: %empty
            | filter_nodes T_IDENT  { reader.objects.filter_node($2); }
            | filter_nodes T_STRING { reader.objects.quoted_filter_node($2); }
            ;

/* --- Places 20 to 23: type references, groups, value types, multiplexor ranges --- */

type_references: %empty
               | type_references T_SIG_TYPE_REF whole T_IDENT ':' T_IDENT ';'
                 { reader.objects.signal_type_reference($3, $4, $6); }
               ;

groups: %empty
      | groups T_SIG_GROUP whole T_IDENT whole ':' blank_names ';'
        { reader.messages.signal_group($3, $4, $5); }
      ;

value_types: %empty
           | value_types T_SIG_VALTYPE whole T_IDENT ':' whole ';'
             { reader.messages.signal_value_type($3, $4, $6); }
           | value_types T_SIGTYPE_VALTYPE T_IDENT ':' whole ';'
             { reader.objects.signal_type_value_type($3, $5); }
           ;

multiplexor_ranges: %empty
                  | multiplexor_ranges T_SG_MUL_VAL whole T_IDENT T_IDENT ranges ';'
                    { reader.messages.multiplexor_ranges($3, $4, $5); }
                  ;

ranges: %empty
      | range_list
      ;

range_list: multiplexor_range
          | range_list ',' multiplexor_range
          ;

multiplexor_range: whole '-' whole { reader.messages.multiplexor_range($1, $3); } ;

%%
