"use strict";
// The view, the stretch of time that all charts show: drawing, zooming and moving along.

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
