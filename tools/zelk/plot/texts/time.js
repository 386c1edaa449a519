"use strict";
// Times as texts, and the ticks of the time axis.

const DAY = 86400;

// Decimals that tell multiples of 1, 2 or 5 times a power of ten apart.
function decimalsFor(step) {
  return Math.min(12, Math.max(0, Math.ceil(-Math.log10(step) - 1e-9)));
}

// Steps between ticks, ascending: 1, 2 and 5 times powers of ten, and those of clocks for dates.
function decimalSteps(first, last) {
  const steps = [];
  for (let power = first; power <= last; ++power) steps.push(...[1, 2, 5].map((digit) => Number(`${digit}e${power}`)));
  return steps;
}

// Those of which a span has a few to some hundreds.
function stepsFor(span) {
  const power = Math.floor(Math.log10(span));
  return decimalSteps(Math.max(-300, power - 3), power);
}

// Counted, for a sum might not grow.
function multiples(begin, end, step) {
  const first = Math.ceil(begin / step - 1e-9);
  const count = Math.min(1000, Math.floor(end / step + 1e-9) - first + 1);
  return Array.from({ length: Math.max(0, count) }, (_, i) => (first + i) * step);
}

const CLOCK_STEPS = [
  ...decimalSteps(-9, -1),
  ...[1, 2, 5, 10, 15, 30, 60, 120, 300, 600, 900, 1800, 3600, 7200, 10800, 21600, 43200],
  ...decimalSteps(0, 9).map((days) => days * DAY),
];

class TimeTexts {
  constructor({ origin, isDated }) {
    const nanoseconds = BigInt(origin);
    const perDay = BigInt(DAY) * 1000000000n;
    const inDay = ((nanoseconds % perDay) + perDay) % perDay;
    this.day = Number((nanoseconds - inDay) / perDay);
    this.second = Number(inDay) / 1e9;
    this.isDated = isDated;
  }

  steps(span) {
    return this.isDated ? CLOCK_STEPS : stepsFor(span);
  }

  // Multiples of the step in a span; of clock times for dates.
  ticks(begin, end, step) {
    const shift = this.isDated ? this.second : 0;
    return multiples(begin + shift, end + shift, step).map((time) => time - shift);
  }

  tickTexts(ticks, step) {
    const decimals = decimalsFor(step);
    if (!this.isDated) return ticks.map((time) => time.toFixed(decimals));
    let dayBefore;
    return ticks.map((time) => {
      const { day, clock } = this.dated(time, decimals);
      const isNew = day !== dayBefore;
      dayBefore = day;
      const short = step >= 60 ? clock.slice(0, 5) : clock;
      return isNew ? `${short}\n${day}` : short;
    });
  }

  // A date and a time of day in UTC, rounded.
  dated(time, decimals) {
    const scale = 10 ** decimals;
    const days = Math.floor((this.second + time) / DAY);
    let units = Math.round((this.second + time - days * DAY) * scale);
    const carry = units >= DAY * scale ? 1 : 0;
    if (carry) units = 0;
    const seconds = Math.floor(units / scale);
    const fraction = decimals > 0 ? `.${String(units - seconds * scale).padStart(decimals, "0")}` : "";
    const date = new Date((this.day + days + carry) * DAY * 1000 + seconds * 1000);
    if (Number.isNaN(date.getTime())) return { day: "", clock: `${time.toFixed(decimals)} s` };
    const [day, clock] = date.toISOString().split("T");
    return { day, clock: clock.slice(0, 8) + fraction };
  }

  // One time, exact enough for a span of so many seconds on so many pixels.
  text(time, perPixel) {
    const decimals = Math.min(9, Math.max(3, decimalsFor(perPixel)));
    if (!this.isDated) return `${time.toFixed(decimals)} s`;
    const { day, clock } = this.dated(time, decimals);
    return `${day} ${clock} UTC`;
  }
}
