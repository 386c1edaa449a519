#include <gtest/gtest.h>

#include <string>

#include "support/files.hpp"
#include "support/paths.hpp"
#include "tools/run_tool.hpp"

namespace {

const std::string kCar = bytes_of(ZELK_SOURCE_DIR "/tests/tools/encode.dbc");

TEST(Encode, Frames) {
  write_file("car.dbc", kCar);
  const struct {
    const char* arguments;
    const char* out;  // without its line feed; empty when it is refused
    const char* err;
  } cases[] = {
      {"Motion", "123#0000000000000000", ""},
      {"Motion --log --time 12.5 --interface v1", "(12.500000) v1 123#0000000000000000", ""},
      {"0x123 Speed=100 Gear=-1", "123#E8030F0000000000", ""},
      {"291 Speed=100 Torque=-0.5", "123#E80300FFF0000000", ""},
      {"Motion Speed=99.96", "123#E803000000000000", ""},
      {"Motion Gear=R", "123#00000F0000000000", ""},
      {"Motion Speed=100 --from 123#FFFFFFFFFFFFFFFF", "123#E803FFFFFFFFFFFF", ""},
      {"Motion Speed=100 --from 123##5000011", "123##5E80311", ""},
      {"Group Level=50 --from 18FEF117#00", "18FEF117#32", ""},
      {"Big Last=255", "126##00000000000000000000000FF", ""},
      {"Wide U=9223372036854775808", "125#0000000000000080", ""},
      {"Wide U=18446744073709551615 --raw", "125#FFFFFFFFFFFFFFFF", ""},
      {"Wide S=-0x1 --raw", "125#FFFFFFFFFFFFFFFF", ""},
      {"Wide D=4", "125#000000000000F83F", ""},
      {"Wide F=-3.5", "125#000060C000000000", ""},
      // out of range, and what --force makes of it
      {"Motion Speed=400.1", "", "Speed=400.1: out of range, 0 to 400 km/h"},
      {"Motion Speed=400.1 --force", "123#A10F000000000000", ""},
      {"Motion Speed=65536 --raw", "", "does not fit into 16 bits (0 to 65535)"},
      {"Motion Speed=1e9 --force", "123#FFFF000000000000", ""},
      {"Motion Speed=-1 --raw --force", "123#0000000000000000", ""},
      {"Motion Torque=-5000 --force", "123#0000008000000000", ""},
      {"Motion Gear=Wide", "", "Gear=Wide: does not fit into 4 bits (-8 to 7)"},
      {"Wide F=1e39", "", "F=1e39: beyond what 32 bits can hold"},
      {"Motion Speed=nan --force", "", "Speed=nan: "},
      {"Motion Speed=0.5 --raw", "", "whole number"},
      // names
      {"Moton", "", "no message is named \"Moton\"; did you mean Motion?"},
      {"0x99", "", "no message has the identifier 0x99 (153)"},
      {"Motion \"Gear=Not availabel\"", "", "did you mean Not available?"},
      {"Motion Speed=", "", "Speed=: not a number"},
      {"Motion Speed", "", "\"Speed\" is not SIGNAL=VALUE"},
      {"Motion Speed=1 Speed=1", "", "Speed is given twice"},
      {"Motion Speed=1 Overlap=65535", "", "Speed shares bits with another signal"},
      {"Motion Beyond=1", "", "Beyond does not fit into a frame of 8 bytes"},
      {"Motion Gear=1 --from 123#0000", "", "Gear does not fit into a frame of 2 bytes"},
      {"Motion --from 123#R", "", "\"123#R\" is not a frame with data"},
      {"Huge", "", "Huge has 65 bytes, and a frame at most 64"},
      // multiplexing
      {"Pages Leaf=9 Many=1", "124#03020901", ""},
      {"Pages Leaf=9 --from 124#FFFF0011", "124#03020911", ""},
      {"Pages Many=9", "", "Top must be given: several of its values select Many (1..3)"},
      {"Pages Many=9 Top=2", "124#02000009", ""},
      {"Pages Many=9 --from 124#02000000", "124#02000009", ""},
      {"Pages Many=9 Else=1", "", "no value of Top selects all of Many (1..3), Else (7)"},
      {"Pages Leaf=9 Top=1", "", "Top is given a value that does not select Sub (3)"},
  };
  for (const auto& c : cases) {
    check({std::string("encode car.dbc ") + c.arguments, *c.out ? 0 : 1,
           *c.out ? std::string(c.out) + '\n' : "", c.err});
  }
  for (const char* options :
       {"--time 1", "--interface can0", "--log --time 1e3", "--log --time -1", "--log --time .5",
        "--log --time 1.0000001", "--log --interface \"a b\"", "--log --interface \"(a\""})
    check({std::string("encode car.dbc Motion ") + options, 2, "", "zelk: --"});
}

}  // namespace
