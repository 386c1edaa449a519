"use strict";
// Paths of curves and bands of lanes, decimated to pixels: their cost depends on the width alone.

// Draws into a Path2D in pixels of the canvas: `x` and `y` turn times and values into them.
class CurvePath {
  constructor(points, { begin, end, width, x, y, isStepped }) {
    Object.assign(this, { points, begin, end, width, x, y, isStepped });
    this.path = new Path2D();
    this.isDown = false;
  }

  build() {
    const [first, last] = this.points.around(this.begin, this.end);
    const isSparse = last - first <= this.width * 2;
    for (let i = first; i < last; ) i = isSparse ? this.point(i, last, last - first <= this.width / 12) : this.column(i, last);
    return this.path;
  }

  // Far outside of the chart a coordinate loses its exactness: a line that leads there is cut off near the edge.
  clipped(i, last) {
    const { times, values } = this.points;
    const margin = (this.end - this.begin) / 10;
    const time = Math.min(Math.max(times[i], this.begin - margin), this.end + margin);
    const other = times[i] < time ? i + 1 : i - 1;
    if (time === times[i] || this.isStepped || other < 0 || other >= last || !this.points.isPresent(other)) {
      return [time, values[i]];
    }
    const part = (time - times[i]) / (times[other] - times[i]);
    return [time, values[i] + part * (values[other] - values[i])];
  }

  point(i, last, hasDot) {
    const [time, value] = this.clipped(i, last);
    const x = this.x(time);
    if (!this.points.isPresent(i)) {
      if (this.isStepped && this.isDown) this.path.lineTo(x, this.lastY);
      this.isDown = false;
      return i + 1;
    }
    this.lineTo(x, this.y(value));
    const isAlone = !this.points.isPresent(i - 1) && !this.points.isPresent(i + 1);
    if (hasDot || isAlone) this.dot(x, this.y(value));
    return i + 1;
  }

  lineTo(x, y) {
    if (this.isDown && this.isStepped) this.path.lineTo(x, this.lastY);
    if (this.isDown) this.path.lineTo(x, y);
    else this.path.moveTo(x, y);
    this.isDown = true;
    this.lastY = y;
  }

  dot(x, y) {
    const radius = 2 * devicePixelRatio;
    this.path.moveTo(x + radius, y);
    this.path.arc(x, y, radius, 0, 2 * Math.PI);
    this.path.moveTo(x, y);
  }

  // All points in a column of pixels become one vertical line; returns the index behind them.
  column(i, last) {
    const { times } = this.points;
    const perPixel = (this.end - this.begin) / this.width;
    const pixel = Math.floor((times[i] - this.begin) / perPixel);
    const next = Math.min(last, Math.max(i + 1, firstFrom(times, this.begin + (pixel + 1) * perPixel, i)));
    if (next === i + 1) return this.point(i, last, false);
    const { least, most } = this.points.extremes(i, next);
    if (least > most) {
      this.isDown = false;
      return next;
    }
    this.strokeColumn(this.x(this.begin + (pixel + 0.5) * perPixel), i, next, least, most);
    return next;
  }

  strokeColumn(x, i, next, least, most) {
    const { values } = this.points;
    this.lineTo(x, this.y(this.points.isPresent(i) ? values[i] : least));
    this.path.lineTo(x, this.y(least));
    this.path.lineTo(x + (least === most ? 1 : 0), this.y(most));
    this.isDown = this.points.isPresent(next - 1);
    if (this.isDown) this.path.lineTo(x, (this.lastY = this.y(values[next - 1])));
  }
}

// Calls `draw(left, right, index)` for each stretch in a time span, in pixels; index is -1 for what is too narrow to be
// drawn one by one. `x` turns times into pixels.
function forEachBand(stretches, { begin, end, x, time }, draw) {
  const narrow = 3 * devicePixelRatio;
  const last = firstAbove(stretches.begins, end);
  for (let i = firstFrom(stretches.ends, begin); i < last; ) {
    const left = x(Math.max(begin, stretches.begins[i]));
    const right = x(Math.min(end, stretches.ends[i]));
    const behind = Math.min(last, firstFrom(stretches.begins, time(left + narrow), i + 1));
    if (right - left >= narrow || behind <= i + 1) {
      draw(left, Math.max(right, left + 1), i++);
    } else {
      draw(left, Math.max(x(Math.min(end, stretches.ends[behind - 1])), left + 1), -1);
      i = behind;
    }
  }
}

// A text, cut to a width; empty where nothing of it would be left.
function cutTo(context, whole, width) {
  const text = whole.slice(0, 500);
  if (width < 8 * devicePixelRatio) return "";
  if (text === whole && context.measureText(text).width <= width) return text;
  let length = Math.min(text.length, Math.floor(width / 2));
  while (length > 0 && context.measureText(`${text.slice(0, length)}…`).width > width) length = Math.floor(length * 0.9);
  return length > 0 ? `${text.slice(0, length)}…` : "";
}
