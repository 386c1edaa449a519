"use strict";
// What all charts have: a panel with buttons, which tell what is in it and its value at the cursor, and the time axis.

function swatch(index) {
  const image = document.createElementNS("http://www.w3.org/2000/svg", "svg");
  image.setAttribute("class", "swatch");
  image.setAttribute("aria-hidden", "true");
  const line = document.createElementNS("http://www.w3.org/2000/svg", "line");
  const attributes = { x1: 0, x2: 24, y1: 5, y2: 5, "stroke-dasharray": dashes(index).join(" ") };
  for (const [name, value] of Object.entries(attributes)) line.setAttribute(name, value);
  line.style.stroke = `var(--curve-${index % COLOR_COUNT})`;
  image.append(line);
  return image;
}

function keyButton(name, index, toggle) {
  const button = document.createElement("button");
  button.type = "button";
  button.setAttribute("aria-pressed", "true");
  const value = document.createElement("span");
  value.className = "value";
  const label = document.createElement("span");
  label.textContent = name;
  if (index !== undefined) button.append(swatch(index));
  button.append(label, value);
  button.addEventListener("click", () => {
    const isShown = button.getAttribute("aria-pressed") !== "true";
    button.setAttribute("aria-pressed", String(isShown));
    toggle(isShown);
  });
  return { button, value };
}

function timeAxis(hasTexts) {
  return {
    stroke: () => color("--ink"),
    grid: { stroke: () => color("--grid"), width: 1 },
    ticks: { show: hasTexts, stroke: () => color("--grid"), size: 4 },
    size: hasTexts ? TIME_AXIS_HEIGHT : 0,
    font: FONT,
    space: () => (timeTexts.isDated ? 110 : 90),
    incrs: (chart, axis, begin, end) => timeTexts.steps(end - begin),
    splits: (chart, axis, begin, end, step) => (step > 0 ? timeTexts.ticks(begin, end, step) : []),
    values: (chart, ticks, axis, space, step) => (hasTexts ? timeTexts.tickTexts(ticks, step) : ticks.map(() => "")),
  };
}

function optionsOf(body, settings) {
  return {
    width: Math.max(200, body.clientWidth),
    padding: [8, 16, 0, settings.leftPadding ?? 0],
    legend: { show: false },
    ...settings,
    scales: { x: { time: false, range: (chart, least, most) => [least, most] }, ...settings.scales },
    cursor: {
      y: false,
      points: { show: false },
      drag: { x: true, y: false, setScale: false, dist: 4 },
      bind: {
        mousedown: (chart, target, handler) => (event) => (event.shiftKey ? startPan(chart, event) : handler(event)),
        dblclick: () => () => setView(whole),
      },
    },
    hooks: { setCursor: [followPointer], setSelect: [zoomToSelection], ...settings.hooks },
  };
}

function addPanel(title) {
  const panel = document.createElement("div");
  panel.className = "panel";
  const keys = document.createElement("div");
  keys.className = "keys";
  const body = document.createElement("div");
  body.className = "body";
  body.setAttribute("role", "img");
  body.setAttribute("aria-label", title);
  panel.append(keys, body);
  element("charts").append(panel);
  return { keys, body };
}
