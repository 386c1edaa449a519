"use strict";
// The cursor: one time, at which all values are read.

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
