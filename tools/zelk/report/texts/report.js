"use strict";

// --- Colours ---

{
  const choice = document.getElementById("theme");
  choice.value = document.documentElement.dataset.theme ?? "";
  choice.addEventListener("change", () => {
    document.documentElement.dataset.theme = choice.value;
    try {
      localStorage.setItem("zelk-theme", choice.value);
    } catch {
      // A browser that keeps nothing shows the choice until the page is left.
    }
  });
  choice.parentElement.hidden = false;
}

// --- Tables that are searched, filtered and sorted ---

/** A new element: `make("th", {scope: "col"}, "Name")`. */
function make(tag, attributes = {}, ...children) {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) element.setAttribute(name, value);
  element.append(...children);
  return element;
}

const collator = new Intl.Collator("en", { numeric: true });

/** Numbers, such as "0x1F", "-5" and "0 to 100", come by their value and in front of all other texts. */
function compareTexts(a, b) {
  const [x, y] = [a, b].map((text) => (text.startsWith("0x") ? Number(text) : parseFloat(text)));
  if (Number.isNaN(x) || Number.isNaN(y)) {
    return Number.isNaN(x) - Number.isNaN(y) || collator.compare(a, b);
  }
  return x - y || collator.compare(a, b);
}

/** A row: the texts of its cells, all that a search looks through, and its element. */
class Row {
  #element;
  #makeElement;
  #searched;
  #getSearched;

  constructor(cells, getSearched, makeElement) {
    this.cells = cells;
    this.#getSearched = getSearched;
    this.#makeElement = makeElement;
  }
  get element() {
    return (this.#element ??= this.#makeElement());
  }
  get searched() {
    return (this.#searched ??= this.#getSearched().toLowerCase());
  }
  /** Whether one of the names in a cell is the wanted one. */
  has(column, wanted) {
    return this.cells[column].split(", ").includes(wanted);
  }
}

/** Rows that a table has at first: a browser lays out more of them only slowly. */
const MOST_SHOWN = 500;

/** Gives a table its search, its filters and buttons to sort by. `getRows` is asked when they are first needed. */
class Listing {
  #table;
  #getRows;
  #rows;
  #words = [];
  #filters = new Map();
  #sorting = { column: -1, sign: 1 };
  #mostShown = MOST_SHOWN;
  #noun;

  constructor(table, noun, getRows) {
    this.#table = table;
    this.#noun = noun;
    this.#getRows = getRows;
    this.headings = [...table.tHead.rows[0].cells];
    this.bar = make("div", { class: "search", role: "search", "aria-label": noun[1] });
    this.input = make("input", { type: "search", autocomplete: "off", spellcheck: "false" });
    this.status = make("span", { role: "status", class: "status" });
    this.more = make("button", { type: "button", class: "more" });
    this.#addSearch();
    this.#addSorting();
    (table.closest(".scroll") ?? table).before(this.bar);
    (table.closest(".scroll") ?? table).after(this.more);
    this.more.hidden = true;
    this.more.addEventListener("click", () => {
      this.#mostShown = Infinity;
      this.show();
    });
  }

  get rows() {
    return (this.#rows ??= this.#getRows());
  }

  /** Shows the rows that are wanted. */
  show() {
    const wanted = this.rows.filter((row) => this.#isWanted(row));
    const { column, sign } = this.#sorting;
    if (column >= 0) wanted.sort((a, b) => sign * compareTexts(a.cells[column], b.cells[column]));
    const shown = wanted.slice(0, this.#mostShown);
    this.#table.tBodies[0].replaceChildren(...shown.map((row) => row.element));
    this.more.hidden = shown.length === wanted.length;
    this.more.textContent = `Show all ${wanted.length}`;
    const all = this.rows.length;
    const noun = this.#noun[all === 1 ? 0 : 1];
    this.status.textContent = wanted.length === all ? `${all} ${noun}` : `${wanted.length} of ${all} ${noun}`;
  }

  #isWanted(row) {
    for (const [column, value] of this.#filters) if (!row.has(column, value)) return false;
    return this.#words.every((word) => row.searched.includes(word));
  }

  #addSearch() {
    this.bar.append(make("label", {}, "Search ", this.input), this.status);
    this.input.addEventListener("input", () => {
      this.#words = this.input.value.toLowerCase().split(/\s+/).filter(Boolean);
      this.show();
    });
    this.input.addEventListener("keydown", (event) => {
      if (event.key === "Enter") this.#table.querySelector("tbody a")?.click();
    });
  }

  /** A choice for each heading that says so, of the values in its column when there are not too many. */
  addFilters() {
    const most = 200;
    this.headings.forEach((heading, column) => {
      if (!("filter" in heading.dataset)) return;
      const values = new Set(this.rows.flatMap((row) => row.cells[column].split(", ")).filter(Boolean));
      if (values.size < 2 || values.size > most) return;
      const choice = make("select", {}, make("option", { value: "" }, "all"));
      for (const value of [...values].sort(compareTexts)) choice.append(make("option", { value }, value));
      choice.addEventListener("change", () => this.filter(column, choice.value));
      this.status.before(make("label", {}, `${heading.textContent} `, choice));
    });
  }

  filter(column, value) {
    if (value) this.#filters.set(column, value);
    else this.#filters.delete(column);
    this.show();
  }

  #addSorting() {
    this.headings.forEach((heading, column) => {
      const button = make("button", { type: "button", class: "sort" }, ...heading.childNodes);
      heading.append(button);
      button.addEventListener("click", () => this.#sortBy(column));
    });
  }

  #sortBy(column) {
    const isSame = this.#sorting.column === column;
    this.#sorting = { column, sign: isSame ? -this.#sorting.sign : 1 };
    for (const heading of this.headings) heading.removeAttribute("aria-sort");
    const order = this.#sorting.sign > 0 ? "ascending" : "descending";
    this.headings[column].setAttribute("aria-sort", order);
    this.show();
  }
}

const textsOf = (row) => [...row.cells].map((cell) => cell.textContent.trim());

/** The rows that stand in a table already. */
function rowsOf(table, getMore = () => "") {
  return [...table.tBodies[0].rows].map(
    (row) => new Row(textsOf(row), () => `${row.textContent} ${getMore(row)}`, () => row),
  );
}

/** What is said of the message in its section, but for its signals. */
function textOfSection(row) {
  const section = document.getElementById(row.querySelector("a").hash.slice(1));
  return [...(section?.children ?? [])]
    .filter((child) => child.matches("dl, p, ul"))
    .map((child) => child.textContent)
    .join(" ");
}

/** The signals as they stand with their messages: columns of a table of all, and the index of each there. */
const SIGNAL_COLUMNS = [
  ["Signal", 0],
  ["Message", null],
  ["Start", 1],
  ["Bits", 2],
  ["Coding", 3],
  ["Factor", 4],
  ["Offset", 5],
  ["Range", 6],
  ["Unit", 7],
  ["Receivers", 9],
];
const FILTERED_SIGNAL_COLUMNS = new Set(["Coding", "Unit", "Receivers"]);

function signalRow(message, row) {
  const own = textsOf(row);
  const name = message.querySelector("h3").firstChild.textContent.trim();
  const cells = SIGNAL_COLUMNS.map(([, index]) => (index === null ? name : own[index]));
  return new Row(
    cells,
    () => `${name} ${row.textContent}`,
    () => {
      const [signal, owner, ...rest] = cells;
      const link = (id, text) => make("a", { href: `#${id}` }, text);
      return make(
        "tr",
        {},
        make("th", { scope: "row" }, link(row.id, signal)),
        make("td", {}, link(message.id, owner)),
        ...rest.map((text) => make("td", {}, text)),
      );
    },
  );
}

function allSignals() {
  return [...document.querySelectorAll(".message")].flatMap((message) =>
    [...message.querySelectorAll("table.signals > tbody > tr")].map((row) => signalRow(message, row)),
  );
}

// --- What the file says once, and the script wherever it belongs ---

/** Gives each signal the element that links lead to: only those have one in the file that others name there. */
function nameSignals(message, rows) {
  const prefix = message.id.slice("message-".length);
  for (const row of rows) row.id ||= `${prefix}.${row.cells[0].textContent}`;
}

/** Signals name their receivers by the numbers that these have with the message. */
function nameReceivers(message, rows) {
  const links = [...message.querySelectorAll(".receivers > a")];
  const names = links.map((link) => link.textContent);
  const counts = names.map(() => 0);
  for (const { lastElementChild: cell } of rows) {
    const indices = (cell.textContent.match(/\d+/g) ?? []).map((number) => number - 1);
    for (const index of indices) ++counts[index];
    cell.textContent = indices.map((index) => names[index]).join(", ");
  }
  links.forEach((link, i) => counts[i] < rows.length && link.after(` (${counts[i]} of ${rows.length})`));
}

/** A list of values that several signals have stands with the first one, and the others link to it. */
function copyValues() {
  for (const link of document.querySelectorAll('.message a[href^="#values"]')) {
    const copy = document.getElementById(link.hash.slice(1)).cloneNode(true);
    copy.removeAttribute("id");
    link.replaceWith(copy);
  }
}

/** The heading has the coding of signals that state none. */
function nameCodings(table, rows) {
  const heading = table.tHead.rows[0].cells[3];
  const usual = heading.querySelector("small").textContent.replace("else ", "");
  heading.textContent = "Coding";
  for (const { cells } of rows) cells[3].textContent ||= usual;
}

/** The table of signals and the drawings tell what they are, also to who cannot see what they belong to. */
function labelMessage(message, table) {
  const name = message.querySelector("h3").firstChild.textContent.trim();
  for (const drawing of message.querySelectorAll(".bits svg"))
    drawing.setAttribute("aria-label", drawing.getAttribute("aria-label").replace("Bits", () => `Bits of ${name}`));
  for (const [attribute, value] of [["role", "group"], ["aria-label", "Signals"], ["tabindex", "0"]])
    table?.parentElement.setAttribute(attribute, value);
}

function completeMessages() {
  copyValues();
  for (const message of document.querySelectorAll("#details .message")) {
    const table = message.querySelector("table.signals");
    const rows = [...(table?.tBodies[0].rows ?? [])];
    nameSignals(message, rows);
    nameReceivers(message, rows);
    if (table) nameCodings(table, rows);
    labelMessage(message, table);
    message.append(make("a", { class: "back", href: "#messages" }, "All messages"));
  }
}

function addSignalTable(section) {
  const headings = SIGNAL_COLUMNS.map(([text]) =>
    make("th", FILTERED_SIGNAL_COLUMNS.has(text) ? { scope: "col", "data-filter": "" } : { scope: "col" }, text),
  );
  const table = make("table", { id: "signal-table" });
  table.append(make("thead", {}, make("tr", {}, ...headings)), make("tbody"));
  const region = { class: "scroll", role: "region", "aria-label": "Table of signals", tabindex: "0" };
  document.getElementById("signals-elsewhere").remove();
  section.append(make("div", region, table));
  return new Listing(table, ["signal", "signals"], allSignals);
}

{
  const listings = [];
  const messages = document.getElementById("message-table");
  const signals = document.getElementById("signals");
  const findings = document.getElementById("finding-table");
  if (messages) listings.push(new Listing(messages, ["message", "messages"], () => rowsOf(messages, textOfSection)));
  if (signals) listings.push(addSignalTable(signals));
  if (findings) listings.push(new Listing(findings, ["finding", "findings"], () => rowsOf(findings)));

  // The page is seen first, and its tables are made ready afterwards.
  requestAnimationFrame(() =>
    setTimeout(() => {
      completeMessages();
      for (const listing of listings) {
        listing.addFilters();
        listing.show();
      }
      // What a link leads to has moved down, or was not there before.
      if (location.hash) location.replace(location.hash);
      document.documentElement.dataset.ready = "";
    }),
  );

  // "/" goes to the search, as on many pages.
  document.addEventListener("keydown", (event) => {
    if (event.key !== "/" || event.target.closest("input, select, textarea") || !listings[0]) return;
    event.preventDefault();
    listings[0].input.focus();
  });
}

// --- Paper shows what is folded on the screen ---

addEventListener("beforeprint", () => {
  for (const folded of document.querySelectorAll("details:not([open])")) {
    folded.open = true;
    folded.dataset.opened = "";
  }
});
addEventListener("afterprint", () => {
  for (const opened of document.querySelectorAll("details[data-opened]")) {
    opened.open = false;
    delete opened.dataset.opened;
  }
});
