"use strict";
// The figure's columns, unpacked, and searches in them. The forms of packed columns stand in packing.hpp.

function bytesOf(base64) {
  const text = atob(base64);
  const bytes = new Uint8Array(text.length);
  for (let i = 0; i < bytes.length; ++i) bytes[i] = text.charCodeAt(i);
  return bytes;
}

function countOfIntegers(bytes) {
  let count = 0;
  for (let i = 0; i < bytes.length; ++i) if (bytes[i] < 128) ++count;
  return count;
}

// Signed integers of variable length. Their size asks for arithmetic instead of 32-bit operators.
function integersOf(bytes) {
  const integers = new Float64Array(countOfIntegers(bytes));
  for (let at = 0, i = 0; i < integers.length; ++i) {
    let value = bytes[at] & 127;
    for (let weight = 128; bytes[at++] >= 128; weight *= 128) value += (bytes[at] & 127) * weight;
    integers[i] = value % 2 === 0 ? value / 2 : -(value + 1) / 2;
  }
  return integers;
}

function summedUp(numbers) {
  for (let i = 1; i < numbers.length; ++i) numbers[i] += numbers[i - 1];
  return numbers;
}

function unpacked(column) {
  if (column.f64 !== undefined) return new Float64Array(bytesOf(column.f64).buffer);
  if (column.f32 !== undefined) return Float64Array.from(new Float32Array(bytesOf(column.f32).buffer));
  if (column.ticks !== undefined) {
    return summedUp(summedUp(integersOf(bytesOf(column.ticks)))).map((ticks) => ticks / column.perSecond);
  }
  const table = new Float64Array(bytesOf(column.table).buffer);
  return summedUp(integersOf(bytesOf(column.codes))).map((code) => table[code]);
}

// Index of the first element that is not below the limit; of the first above it for `firstAbove`.
function firstFrom(sorted, limit, begin = 0) {
  let end = sorted.length;
  while (begin < end) {
    const middle = (begin + end) >>> 1;
    if (sorted[middle] < limit) begin = middle + 1;
    else end = middle;
  }
  return begin;
}

function firstAbove(sorted, limit, begin = 0) {
  let end = sorted.length;
  while (begin < end) {
    const middle = (begin + end) >>> 1;
    if (sorted[middle] <= limit) begin = middle + 1;
    else end = middle;
  }
  return begin;
}

// A curve's points, and a pyramid over them: each level has the least and the greatest value of 16 elements of
// the level below, so that the extremes of any stretch are found in a few dozen steps.
const LEVEL_FACTOR = 16;

class Points {
  constructor(times, values) {
    this.times = times;
    this.values = values;
    const isInfinite = (value) => Math.abs(value) === Infinity;
    const finite = values.some(isInfinite) ? values.map((value) => (isInfinite(value) ? NaN : value)) : values;
    this.levels = [{ least: finite, most: finite }];
    while (this.levels.at(-1).least.length > LEVEL_FACTOR) this.levels.push(Points.levelAbove(this.levels.at(-1)));
  }

  static levelAbove(level) {
    const count = Math.ceil(level.least.length / LEVEL_FACTOR);
    const least = new Float64Array(count).fill(NaN);
    const most = new Float64Array(count).fill(NaN);
    for (let i = 0; i < level.least.length; ++i) {
      const above = Math.floor(i / LEVEL_FACTOR);
      if (!(least[above] <= level.least[i])) least[above] = Number.isNaN(level.least[i]) ? least[above] : level.least[i];
      if (!(most[above] >= level.most[i])) most[above] = Number.isNaN(level.most[i]) ? most[above] : level.most[i];
    }
    return { least, most };
  }

  // The extremes of the points from `begin` to `end`, which is left out; infinite the wrong way round where there
  // is no value.
  extremes(begin, end) {
    const found = { least: Infinity, most: -Infinity };
    const take = ({ least, most }, i) => {
      if (least[i] < found.least) found.least = least[i];
      if (most[i] > found.most) found.most = most[i];
    };
    for (const level of this.levels) {
      const isLast = level === this.levels.at(-1);
      while (begin < end && (isLast || begin % LEVEL_FACTOR !== 0)) take(level, begin++);
      while (begin < end && end % LEVEL_FACTOR !== 0) take(level, --end);
      begin /= LEVEL_FACTOR;
      end /= LEVEL_FACTOR;
      if (begin >= end) break;
    }
    return found;
  }

  isPresent(i) {
    return Number.isFinite(this.values[i]);
  }

  // The value that holds at a time: NaN before the first point.
  valueAt(time) {
    const i = firstAbove(this.times, time) - 1;
    return i < 0 ? NaN : this.values[i];
  }

  // Indices of the points of a time span, and of one more at either side.
  around(begin, end) {
    const first = Math.max(0, firstFrom(this.times, begin) - 1);
    return [first, Math.min(this.times.length, firstAbove(this.times, end, first) + 1)];
  }
}

// A lane's stretches.
class Stretches {
  constructor({ texts, begins, ends, codes }) {
    this.texts = texts;
    this.begins = unpacked(begins);
    this.ends = unpacked(ends);
    this.codes = unpacked(codes);
  }

  text(i) {
    return this.codes[i] < 0 ? "…" : this.texts[this.codes[i]];
  }

  textAt(time) {
    const i = firstAbove(this.begins, time) - 1;
    return i < 0 || this.ends[i] < time ? undefined : this.text(i);
  }
}
