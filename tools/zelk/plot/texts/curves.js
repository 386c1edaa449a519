"use strict";
// Charts of curves, one for each unit.

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
