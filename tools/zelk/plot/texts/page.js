"use strict";
// Keys, wheel, buttons and size of the page, and its start.

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
