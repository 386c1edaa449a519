"use strict";
// The chart of lanes.

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
