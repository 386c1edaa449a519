// --- Bit layouts ---

{
  const box = document.createElement("div");
  box.id = "signal-box";
  box.setAttribute("role", "tooltip");
  box.hidden = true;
  document.body.append(box);

  // A shape without a number has that of its place.
  for (const svg of document.querySelectorAll(".bits svg"))
    [...svg.querySelectorAll("g")].forEach((shape, i) => (shape.dataset.n ??= i + 1));

  const shapesOf = (svg) => [...svg.querySelectorAll("g[data-n]")];
  const rowsOf = (section) => section?.querySelector("table.signals")?.tBodies[0]?.rows ?? [];
  const rowOf = (shape) => rowsOf(shape.closest(".side, section"))[shape.dataset.n - 1];
  const nameOf = (shape) =>
    rowOf(shape)?.cells[0].textContent ?? (shape.querySelector("title") ?? shape.querySelector("text")).textContent;

  // --- The box: what the row of the table says ---

  const entry = (tag, text) => {
    const element = document.createElement(tag);
    element.textContent = text;
    return element;
  };

  const short = (text) => (text.length > 300 ? text.slice(0, 300) + "\u2026" : text);

  const contentOf = (shape) => {
    const row = rowOf(shape);
    const parts = [entry("b", nameOf(shape))];
    if (!row) return parts;
    const headings = row.closest("table").tHead.rows[0].cells;
    const list = document.createElement("dl");
    for (let i = 1; i < row.cells.length; ++i) {
      const text = row.cells[i].textContent.trim();
      if (text) list.append(entry("dt", headings[i].textContent), entry("dd", short(text)));
    }
    return [...parts, list];
  };

  // Beside the shape, so that the rows above and below stay in sight; else below or above it.
  const place = (shape) => {
    const at = shape.getBoundingClientRect();
    const width = box.offsetWidth;
    const height = box.offsetHeight;
    const hasSide = at.right + 12 + width <= innerWidth;
    const below = at.bottom + 8;
    const outside = below + height <= innerHeight ? below : at.top - height - 8;
    const top = hasSide ? Math.min(at.top, innerHeight - height - 4) : outside;
    box.style.top = `${Math.max(4, top)}px`;
    box.style.left = `${hasSide ? at.right + 12 : Math.max(4, Math.min(at.left, innerWidth - width - 12))}px`;
  };

  let lit = [];
  const unlight = () => {
    for (const element of lit) element.classList.remove("on");
    lit = [];
    box.hidden = true;
  };

  const light = (section, number) => {
    unlight();
    const row = rowsOf(section)[number - 1];
    lit = [...section.querySelectorAll(`g[data-n="${number}"]`), ...(row ? [row] : [])];
    for (const element of lit) element.classList.add("on");
  };

  const tell = (shape) => {
    light(shape.closest(".side, section"), shape.dataset.n);
    // The box says more than the title, which browsers would show beside it.
    const title = shape.querySelector("title");
    if (title && rowOf(shape)) title.remove();
    box.replaceChildren(...contentOf(shape));
    box.hidden = false;
    place(shape);
  };

  // --- Mouse and keyboard ---

  for (const svg of document.querySelectorAll(".bits svg")) {
    const shapes = shapesOf(svg);
    if (!shapes.length) continue;
    svg.setAttribute("role", "group");
    shapes.forEach((shape, i) => {
      shape.setAttribute("role", "img");
      shape.setAttribute("aria-label", nameOf(shape));
      shape.setAttribute("tabindex", i ? -1 : 0);
    });
  }

  const step = (shape, key) => {
    const shapes = shapesOf(shape.ownerSVGElement);
    const at = shapes.indexOf(shape);
    const to = { ArrowRight: at + 1, ArrowDown: at + 1, ArrowLeft: at - 1, ArrowUp: at - 1, Home: 0, End: shapes.length - 1 }[key];
    const next = shapes[to];
    if (!next) return to !== undefined;
    shape.setAttribute("tabindex", -1);
    next.setAttribute("tabindex", 0);
    next.focus();
    return true;
  };

  const shapeAt = (event) => event.target.closest?.(".bits g[data-n]");
  const goToRow = (shape) => {
    const row = rowOf(shape);
    if (row?.id) location.hash = `#${row.id}`;
  };

  document.addEventListener("mouseover", (event) => {
    const shape = shapeAt(event);
    if (shape) return tell(shape);
    const row = event.target.closest?.("table.signals > tbody > tr");
    if (row) return light(row.closest(".side, section"), row.sectionRowIndex + 1);
    const focused = document.activeElement?.closest?.(".bits g[data-n]");
    if (focused) tell(focused);
    else unlight();
  });
  document.addEventListener("focusin", (event) => {
    const shape = shapeAt(event);
    if (shape) tell(shape);
    else unlight();
  });
  document.addEventListener("focusout", unlight);
  addEventListener("scroll", () => (box.hidden = true), { passive: true });
  document.addEventListener("click", (event) => {
    const shape = shapeAt(event);
    if (shape) goToRow(shape);
  });
  document.addEventListener("keydown", (event) => {
    if (event.key === "Escape") return unlight();
    const shape = shapeAt(event);
    if (!shape) return;
    if (event.key === "Enter") goToRow(shape);
    else if (!step(shape, event.key)) return;
    event.preventDefault();
  });

  // --- The choice of a multiplexor's value ---

  const choices = new Map();  // of figures

  const choose = (select) => {
    const layouts = select.closest(".layouts");
    const figures = [...layouts.querySelectorAll("figure")];
    const all = Number(select.value) === figures.length;
    figures.forEach((figure, i) => (figure.hidden = !all && i !== Number(select.value)));
    for (const link of layouts.querySelectorAll(".tree a")) {
      if (!all && link.hash === `#${figures[select.value].id}`) link.setAttribute("aria-current", "true");
      else link.removeAttribute("aria-current");
    }
  };

  for (const layouts of document.querySelectorAll(".layouts")) {
    const figures = [...layouts.querySelectorAll("figure")];
    if (figures.length < 2) continue;
    const label = document.createElement("label");
    label.className = "choice";
    const select = document.createElement("select");
    figures.forEach((figure, i) => {
      select.append(new Option(figure.querySelector("figcaption").textContent, i));
      choices.set(figure, select);
    });
    select.append(new Option(`all ${figures.length} layouts`, figures.length));
    label.append("Multiplexor value ", select);
    figures[0].before(label);
    select.value = Math.max(0, figures.findIndex((figure) => figure.querySelector(".marked")));
    select.addEventListener("change", () => choose(select));
    choose(select);
  }

  // A link to a layout chooses it.
  const follow = () => {
    const figure = document.getElementById(decodeURIComponent(location.hash.slice(1)));
    const select = choices.get(figure);
    if (!select) return;
    select.value = [...figure.parentElement.querySelectorAll("figure")].indexOf(figure);
    choose(select);
    figure.scrollIntoView({ block: "nearest" });
  };
  addEventListener("hashchange", follow);
  follow();
}
