"use strict";
// The figure of the page, and what of it is shown.

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
