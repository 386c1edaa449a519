"use strict";
// The charts of a figure, one for each unit and one for the lanes, above one time axis: view, cursor, mouse and keys.

const GUTTER = 76; // of the value axes, in pixels of CSS, as are all sizes here
const TIME_AXIS_HEIGHT = 42;
const LANE_LABEL_HEIGHT = 16;
const LANE_BAND_HEIGHT = 20;
const LANE_HEIGHT = LANE_LABEL_HEIGHT + LANE_BAND_HEIGHT + 4;
const LEAST_HEIGHT = 130;
const MOST_HEIGHT = 420;
const COLOR_COUNT = 8;
const DASHES = [[], [8, 4], [2, 3], [10, 3, 2, 3]];
const FONT = "12px system-ui, sans-serif";

const element = (id) => document.getElementById(id);

const figure = JSON.parse(element("figure").textContent);
element("figure").remove();
const timeTexts = new TimeTexts(figure);
const columns = figure.times.map(unpacked);

const whole = wholeSpan(figure);
const view = { ...whole };
const charts = [];
let cursorTime = NaN;
let isStepped = false;

// A figure of one point in time gets a second around it.
function wholeSpan({ begin, end }) {
  return end > begin ? { begin, end } : { begin: begin - 0.5, end: begin + 0.5 };
}

function color(name) {
  return getComputedStyle(document.documentElement).getPropertyValue(name).trim();
}

function curveColor(index) {
  return color(`--curve-${index % COLOR_COUNT}`);
}

function dashes(index) {
  return DASHES[Math.floor(index / COLOR_COUNT) % DASHES.length];
}

// --- Buttons beside a chart: what is in it, and its value at the cursor

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

// --- Charts

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

// As short as tells them apart: "2.5e+9" where they would not fit beside the chart.
function valueTexts(ticks, step) {
  const most = Math.max(...ticks.map(Math.abs));
  if (most < 1e7 && step >= 1e-4) return ticks.map((tick) => tick.toFixed(decimalsFor(step)));
  const digits = Math.min(15, Math.max(0, Math.ceil(Math.log10(most / step) - 1e-9)));
  return ticks.map((tick) => (tick === 0 ? "0" : tick.toExponential(digits).replace(/\.?0*e\+?/, "e")));
}

function valueAxis(unit) {
  return {
    stroke: () => color("--ink"),
    grid: { stroke: () => color("--grid"), width: 1 },
    ticks: { stroke: () => color("--grid"), size: 4 },
    size: unit ? GUTTER - 20 : GUTTER,
    font: FONT,
    label: unit.slice(0, 40),
    labelFont: FONT,
    labelSize: unit ? 20 : 0,
    incrs: (chart, index, least, most) => stepsFor(most - least),
    splits: (chart, index, least, most, step) => (step > 0 ? multiples(least, most, step) : []),
    values: (chart, ticks, axis, space, step) => valueTexts(ticks, step),
  };
}

// A span around the values: not so narrow that neighbouring ticks were the same double, nor infinite.
function paddedRange(least, most) {
  if (least > most) return [0, 1];
  const size = Math.max(Math.abs(least), Math.abs(most));
  if (size > 1e300) return [-Number.MAX_VALUE / 4, Number.MAX_VALUE / 4];
  const margin = most - least > size * 1e-10 ? (most - least) / 12 : size / 10 || 1;
  return [least - margin, most + margin];
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

function addCurves(axis, firstColor, hasTimes) {
  const { keys, body } = addPanel(`Curves${axis.unit ? ` in ${axis.unit}` : ""}: ${axis.curves.map((curve) => curve.name).join(", ")}`);
  const curves = axis.curves.map((curve, i) => ({ name: curve.name, unit: axis.unit, color: firstColor + i,
    points: new Points(columns[curve.times], unpacked(curve.values)) }));
  const isShown = curves.map(() => true);
  const chart = new uPlot(optionsOf(body, {
    height: LEAST_HEIGHT,
    axes: [timeAxis(hasTimes), valueAxis(axis.unit)],
    scales: { y: { range: () => rangeOf(curves.filter((_, i) => isShown[i])) } },
    series: [{}, ...curves.map(seriesOf)],
  }), [[view.begin, view.end], ...curves.map(() => [0, 0])], body);
  curves.forEach((curve, i) => {
    const key = keyButton(curve.name, curve.color, (show) => {
      isShown[i] = show;
      chart.setSeries(i + 1, { show });
    });
    keys.append(key.button);
    curve.key = key.value;
  });
  charts.push({ chart, body, keys, curves, hasTimes });
}

function seriesOf(curve) {
  return {
    auto: false,
    width: 1.5,
    stroke: () => curveColor(curve.color),
    dash: dashes(curve.color),
    points: { show: false },
    paths: (chart) => ({ stroke: pathOf(chart, curve.points), fill: null, clip: null, band: null, gaps: null, flags: 0 }),
  };
}

function pathOf(chart, points) {
  const { left, top, width, height } = chart.bbox;
  const { min, max } = chart.scales.y;
  const x = (time) => left + ((time - view.begin) / (view.end - view.begin)) * width;
  const y = (value) => top + (1 - (value - min) / (max - min)) * height;
  return new CurvePath(points, { ...view, width, x, y, isStepped }).build();
}

function rangeOf(curves) {
  let [least, most] = [Infinity, -Infinity];
  for (const { points } of curves) {
    const found = points.extremes(...points.around(view.begin, view.end));
    least = Math.min(least, found.least);
    most = Math.max(most, found.most);
  }
  return paddedRange(least, most);
}

// --- Lanes

function lanesHeight(lanes) {
  return 12 + lanes.filter((lane) => lane.isShown).length * LANE_HEIGHT + TIME_AXIS_HEIGHT;
}

function addLanes(figureLanes) {
  const { keys, body } = addPanel(`States: ${figureLanes.map((lane) => lane.name).join(", ")}`);
  const lanes = figureLanes.map((lane) => ({ name: lane.name, stretches: new Stretches(lane), isShown: true }));
  const chart = new uPlot(optionsOf(body, {
    height: lanesHeight(lanes),
    leftPadding: GUTTER,
    axes: [timeAxis(true)],
    series: [{}],
    hooks: { draw: [(drawn) => drawLanes(drawn, lanes)] },
  }), [[view.begin, view.end]], body);
  for (const lane of lanes) {
    const key = keyButton(lane.name, undefined, (show) => {
      lane.isShown = show;
      chart.setSize({ width: chart.width, height: lanesHeight(lanes) });
    });
    keys.append(key.button);
    lane.key = key.value;
  }
  charts.push({ chart, body, keys, lanes, hasTimes: true });
}

function drawLanes(chart, lanes) {
  const context = chart.ctx;
  context.save();
  context.textBaseline = "middle";
  context.textAlign = "left";
  const ratio = uPlot.pxRatio;
  let top = chart.bbox.top;
  for (const lane of lanes.filter((each) => each.isShown)) {
    context.font = `${12 * ratio}px system-ui, sans-serif`;
    context.fillStyle = color("--ink");
    context.fillText(cutTo(context, lane.name, chart.bbox.width), chart.bbox.left, top + (LANE_LABEL_HEIGHT / 2) * ratio);
    drawBands(chart, lane.stretches, top + LANE_LABEL_HEIGHT * ratio, LANE_BAND_HEIGHT * ratio);
    top += LANE_HEIGHT * ratio;
  }
  context.restore();
}

function drawBands(chart, stretches, top, height) {
  const { ctx: context, bbox } = chart;
  const perPixel = (view.end - view.begin) / bbox.width;
  const x = (time) => bbox.left + (time - view.begin) / perPixel;
  const time = (pixel) => view.begin + (pixel - bbox.left) * perPixel;
  const ink = color("--ink");
  const fills = Array.from({ length: COLOR_COUNT }, (_, i) => color(`--band-${i}`));
  const edge = color("--band-edge");
  forEachBand(stretches, { ...view, x, time }, (left, right, index) => {
    context.fillStyle = index < 0 ? edge : fills[stretches.codes[index] < 0 ? 0 : stretches.codes[index] % COLOR_COUNT];
    context.fillRect(left, top, right - left, height);
    context.fillStyle = edge;
    context.fillRect(left, top, uPlot.pxRatio, height);
    if (index < 0) return;
    const margin = 4 * uPlot.pxRatio;
    context.fillStyle = ink;
    context.fillText(cutTo(context, stretches.text(index), right - left - 2 * margin), left + margin, top + height / 2);
  });
}

// --- View

let isDrawDue = false;

// Draws at most once a frame, however many events ask for it.
function drawSoon() {
  if (isDrawDue) return;
  isDrawDue = true;
  requestAnimationFrame(() => {
    isDrawDue = false;
    draw();
  });
}

function draw() {
  isPlacing = true;
  for (const { chart } of charts) chart.batch(() => chart.setScale("x", { min: view.begin, max: view.end }));
  isPlacing = false;
  for (const { chart } of charts) placeCursor(chart);
  const perPixel = secondsPerPixel();
  element("window").textContent =
    `${timeTexts.text(view.begin, perPixel)} to ${timeTexts.text(view.end, perPixel)}`;
}

function secondsPerPixel() {
  return (view.end - view.begin) / Math.max(1, charts[0]?.chart.over.clientWidth ?? 1);
}

function setView({ begin, end }) {
  const most = whole.end - whole.begin;
  const least = Math.min(most, Math.max(1e-8, Math.max(Math.abs(whole.begin), Math.abs(whole.end)) * 1e-12));
  const length = Math.min(most, Math.max(least, end - begin));
  const middle = (begin + end) / 2;
  view.begin = Math.min(Math.max(whole.begin, middle - length / 2), whole.end - length);
  view.end = view.begin + length;
  drawSoon();
}

function zoom(factor, around = Number.isNaN(cursorTime) ? (view.begin + view.end) / 2 : cursorTime) {
  const fixed = Math.min(view.end, Math.max(view.begin, around));
  setView({ begin: fixed - (fixed - view.begin) * factor, end: fixed + (view.end - fixed) * factor });
}

function pan(seconds) {
  setView({ begin: view.begin + seconds, end: view.end + seconds });
}

function zoomToSelection(chart) {
  const { left, width } = chart.select;
  if (width < 1) return;
  const begin = timeAt(chart, left);
  const end = timeAt(chart, left + width);
  chart.setSelect({ left: 0, top: 0, width: 0, height: 0 }, false);
  setView({ begin, end });
}

function timeAt(chart, left) {
  return view.begin + (left / chart.over.clientWidth) * (view.end - view.begin);
}

function startPan(chart, start) {
  const before = { ...view };
  const perPixel = secondsPerPixel();
  const move = (event) => {
    const shift = (start.clientX - event.clientX) * perPixel;
    setView({ begin: before.begin + shift, end: before.end + shift });
  };
  const stop = () => document.removeEventListener("mousemove", move);
  document.addEventListener("mousemove", move);
  document.addEventListener("mouseup", stop, { once: true });
  start.preventDefault();
}

// --- Cursor

const curveCells = [...document.querySelectorAll("#curve-rows td:nth-child(3)")];
const laneCells = [...document.querySelectorAll("#lane-rows td:nth-child(3)")];
let isPlacing = false;
let isReadingDue = false;

function followPointer(chart) {
  if (isPlacing) return;
  const { left } = chart.cursor;
  if (left < 0) return;
  setCursor(timeAt(chart, left));
}

function setCursor(time) {
  cursorTime = time;
  if (isReadingDue) return;
  isReadingDue = true;
  requestAnimationFrame(() => {
    isReadingDue = false;
    for (const { chart } of charts) placeCursor(chart);
    showValues();
  });
}

// Moves the line of one chart. What the library says about that is no movement of the pointer.
function placeCursor(chart) {
  const part = (cursorTime - view.begin) / (view.end - view.begin);
  isPlacing = true;
  chart.setCursor({ left: part >= 0 && part <= 1 ? part * chart.over.clientWidth : -10, top: 0 });
  isPlacing = false;
}

function valueText(value) {
  if (Number.isNaN(value)) return "–";
  return String(Number.isInteger(value) ? value : Number(value.toPrecision(15)));
}

function showValues() {
  const isOn = !Number.isNaN(cursorTime);
  element("cursor").textContent = isOn ? `Cursor at ${timeTexts.text(cursorTime, secondsPerPixel())}` : "No cursor.";
  let row = 0;
  for (const curve of charts.flatMap((each) => each.curves ?? [])) {
    const text = isOn ? valueText(curve.points.valueAt(cursorTime)) : "";
    curveCells[row++].textContent = text;
    curve.key.textContent = text && ` ${text} ${curve.unit}`;
  }
  row = 0;
  for (const lane of charts.flatMap((each) => each.lanes ?? [])) {
    const text = isOn ? (lane.stretches.textAt(cursorTime) ?? "–") : "";
    laneCells[row++].textContent = text;
    lane.key.textContent = text && ` ${text.slice(0, 60)}`;
  }
}

// The nearest time before or behind the cursor at which something has a new point.
function nextPoint(direction) {
  const start = Number.isNaN(cursorTime) ? (direction > 0 ? view.begin : view.end) : cursorTime;
  let found = NaN;
  const lists = [...columns, ...charts.flatMap(({ lanes }) => (lanes ?? []).map((lane) => lane.stretches.begins))];
  for (const times of lists) {
    const time = times[direction > 0 ? firstAbove(times, start) : firstFrom(times, start) - 1];
    if (time !== undefined && !(Math.abs(time - start) >= Math.abs(found - start))) found = time;
  }
  return found;
}

function stepCursor(direction) {
  const time = nextPoint(direction);
  if (Number.isNaN(time)) return;
  if (time < view.begin || time > view.end) pan(time - (view.begin + view.end) / 2);
  setCursor(time);
}

// --- Keys, wheel, size, colours

function toggleSteps() {
  isStepped = !isStepped;
  element("steps").setAttribute("aria-pressed", String(isStepped));
  drawSoon();
}

function toggleDates() {
  if (!figure.isDated) return;
  timeTexts.isDated = !timeTexts.isDated;
  element("dates").setAttribute("aria-pressed", String(timeTexts.isDated));
  drawSoon();
  showValues();
}

const length = () => view.end - view.begin;
const KEYS = {
  "+": () => zoom(0.5),
  "=": () => zoom(0.5),
  "-": () => zoom(2),
  "ArrowLeft": () => pan(-length() / 10),
  "ArrowRight": () => pan(length() / 10),
  "Shift ArrowLeft": () => stepCursor(-1),
  "Shift ArrowRight": () => stepCursor(1),
  "PageUp": () => pan(-length()),
  "PageDown": () => pan(length()),
  "Home": () => setView(whole),
  "End": () => pan(whole.end - view.end),
  "Escape": () => setCursor(NaN),
  "s": toggleSteps,
  "t": toggleDates,
};

element("charts").addEventListener("keydown", (event) => {
  if (event.ctrlKey || event.altKey || event.metaKey) return;
  const action = KEYS[event.shiftKey && event.key.startsWith("Arrow") ? `Shift ${event.key}` : event.key];
  if (!action) return;
  action();
  event.preventDefault();
});

element("charts").addEventListener("wheel", (event) => {
  const over = event.target.closest(".u-over");
  if (!over || event.ctrlKey) return;
  const pixels = Math.max(-300, Math.min(300, (event.deltaY || event.deltaX) * (event.deltaMode === 1 ? 30 : 1)));
  const part = (event.clientX - over.getBoundingClientRect().left) / over.clientWidth;
  if (event.shiftKey) pan((pixels / 1000) * length());
  else zoom(1.003 ** pixels, view.begin + part * length());
  event.preventDefault();
}, { passive: false });

element("zoom-in").addEventListener("click", () => zoom(0.5));
element("zoom-out").addEventListener("click", () => zoom(2));
element("reset").addEventListener("click", () => setView(whole));
element("steps").addEventListener("click", toggleSteps);
element("dates")?.addEventListener("click", toggleDates);

// The charts of curves share the height that the window has.
function fit() {
  const curves = charts.filter((each) => each.curves);
  const others = charts.filter((each) => each.lanes).reduce((sum, each) => sum + lanesHeight(each.lanes), 0);
  const room = (innerHeight - 170 - others) / Math.max(1, curves.length) - 30;
  const height = Math.round(Math.min(MOST_HEIGHT, Math.max(LEAST_HEIGHT, room)));
  for (const each of charts) {
    const times = each.hasTimes ? TIME_AXIS_HEIGHT : 8;
    each.chart.setSize({ width: Math.max(200, each.body.clientWidth), height: each.lanes ? lanesHeight(each.lanes) : height + times });
  }
  drawSoon();
}

function setPrinting(isPrinting) {
  document.documentElement.classList.toggle("printing", isPrinting);
  draw();
}

let colorCount = 0;
figure.axes.forEach((axis, i) => {
  addCurves(axis, colorCount, i === figure.axes.length - 1 && figure.lanes.length === 0);
  colorCount += axis.curves.length;
});
if (figure.lanes.length > 0) addLanes(figure.lanes);
fit();
addEventListener("resize", fit);
matchMedia("(prefers-color-scheme: dark)").addEventListener("change", drawSoon);
addEventListener("beforeprint", () => setPrinting(true));
addEventListener("afterprint", () => setPrinting(false));
