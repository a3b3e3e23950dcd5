'use strict';

// The colours of 0, 1, 2 and 3 agreeing frames, the same in light and dark.
const kAgreementColours = ['#d9591c', '#b3cfea', '#6aa7d8', '#0c4a94'];

const style = name => getComputedStyle(document.documentElement).getPropertyValue(name).trim();
const typographic = text => String(text).replace('-', '\u2212');
const short = value => typeof value === 'number' ? typographic(+value.toPrecision(4)) : '';
const finite = value => typeof value === 'number' ? value : null;
const with_unit = (text, unit) => unit ? `${text}\u00a0${unit}` : text;
const axis_title = axis => axis.unit ? `${axis.label}, ${axis.unit}` : axis.label;

// All series over one ascending x: rows of {x, at}, where at[s] is the index into series s. A
// series that has one x twice, as points of a sweep may, takes two rows.
function align(series) {
  const rows = new Map();
  series.forEach((one, s) => {
    const seen = new Map();
    one.x.forEach((x, index) => {
      const turn = seen.get(x) || 0;
      seen.set(x, turn + 1);
      const key = `${x} ${turn}`;
      if (!rows.has(key)) rows.set(key, {x, at: []});
      rows.get(key).at[s] = index;
    });
  });
  return [...rows.values()].sort((a, b) => a.x - b.x);
}

function column(rows, s, values) {
  return rows.map(row => s in row.at ? finite(values[row.at[s]]) : null);
}

function series_colours(series) {
  let next = 0;
  return series.map(one => {
    if (one.baseline) return style('--baseline');
    if (!one.follows) next++;
    return style(`--series-${(next - 1) % 6}`);
  });
}

// What uPlot draws for one series.
function appearance(plot, one, s, rows, colour) {
  const look = {
    label: one.name,
    stroke: colour,
    width: 2,
    spanGaps: true,
    dash: one.baseline ? [6, 4] : undefined,
    points: {show: one.mark !== 'bars' && rows.length < 40, size: 6, fill: colour, width: 0},
    value: (u, value, _, row) => {
      if (value == null) return '';
      const text = with_unit(short(value), plot.y.unit);
      if (one.mark !== 'points') return text;
      const place = with_unit(short(rows[row].x), plot.x.unit);
      const label = one.labels[rows[row].at[s]];
      return `${text} at ${place}` + (label ? `: ${label}` : '');
    },
  };
  if (one.mark === 'steps') look.paths = uPlot.paths.stepped({align: 1});
  if (one.mark === 'points') {
    look.paths = () => null;
    look.points = {show: true, size: one.baseline ? 12 : 9, width: one.baseline ? 2 : 0,
      stroke: colour, fill: one.baseline ? style('--paper') : colour};
  }
  if (one.mark === 'bars') {
    const fill = one.colours ? {fill: {unit: 3, values: () => one.colours}} : undefined;
    look.paths = uPlot.paths.bars({size: [0.7, 90], disp: fill});
    look.fill = colour;
    look.width = 0;
  }
  return look;
}

function axis(axis, size, splits) {
  return {
    label: axis_title(axis),
    labelFont: '13px system-ui, sans-serif',
    font: '12px system-ui, sans-serif',
    labelSize: 22,
    size,
    stroke: style('--muted'),
    grid: {stroke: style('--line'), width: 1},
    ticks: {show: false},
    splits,
    values: (u, values) => values.map(value => value == null ? '' : typographic(+value.toFixed(6))),
  };
}

// The index of the point of a series that is nearest to the cursor, if one is near.
function nearest(u, s) {
  const kReach = 30;
  let best = null;
  let reach = kReach;
  u.data[0].forEach((x, row) => {
    if (u.data[s][row] == null) return;
    const distance = Math.hypot(u.valToPos(x, 'x') - u.cursor.left,
                                u.valToPos(u.data[s][row], 'y') - u.cursor.top);
    if (distance < reach) [best, reach] = [row, distance];
  });
  return best;
}

function options(plot, rows, width) {
  const marks = plot.series.map(one => one.mark);
  const bars = marks.includes('bars');
  const zero = bars || plot.y.from_zero;
  const padded = (u, low, high) => uPlot.rangeNum(zero ? 0 : low, high, 0.1, true);
  const middle = (u, low, high) => [low - 0.6, high + 0.6];
  const spread = (u, low, high) => uPlot.rangeNum(plot.x.from_zero ? 0 : low, high, 0.06, true);
  const x_range = bars ? middle : marks.includes('points') ? spread : undefined;
  return {
    width,
    height: 320,
    scales: {
      x: {time: false, distr: plot.x.doubling ? 3 : 1, log: 2, range: x_range},
      y: {distr: plot.y.doubling ? 3 : 1, log: 2, range: plot.y.doubling ? undefined : padded},
    },
    axes: [axis(plot.x, 34, bars ? () => rows.map(row => row.x) : undefined), axis(plot.y, 52)],
    padding: [12, 16, 0, 0],
    legend: {show: !bars, markers: {width: 0, fill: (u, s) => u.series[s].stroke()}},
    cursor: {drag: {x: false, y: false}, dataIdx: marks.includes('points') ? nearest : undefined,
             points: {fill: (u, s) => u.series[s].stroke()}},
    // The legend of a point tells both of its numbers.
    series: [{label: plot.x.label, class: marks.includes('points') ? 'hidden' : undefined,
              value: (u, value) => value == null ? '' : with_unit(short(value), plot.x.unit)}],
    bands: [],
  };
}

function make_plot(plot, holder) {
  const rows = align(plot.series);
  const colours = series_colours(plot.series);
  const data = [rows.map(row => row.x)];
  const opts = options(plot, rows, holder.clientWidth);
  plot.series.forEach((one, s) => {
    data.push(column(rows, s, one.y));
    opts.series.push(appearance(plot, one, s, rows, colours[s]));
  });
  plot.series.forEach((one, s) => {
    if (!one.low.length) return;
    for (const edge of [one.high, one.low]) {
      data.push(column(rows, s, edge));
      const look = appearance(plot, {...one, labels: []}, s, rows, 'transparent');
      opts.series.push({...look, class: 'hidden', points: {show: false}});
    }
    opts.bands.push({series: [data.length - 2, data.length - 1], fill: colours[s] + '30'});
  });
  return new uPlot(opts, data, holder);
}

// Draws the plot into the holder, and again when its width or the colours change.
function show_plot(plot, holder) {
  let drawn = null;
  const draw = () => {
    if (drawn) drawn.destroy();
    drawn = make_plot(plot, holder);
  };
  new ResizeObserver(() => {
    if (!drawn) {
      draw();
    } else if (drawn.width !== holder.clientWidth) {
      drawn.setSize({width: holder.clientWidth, height: drawn.height});
    }
  }).observe(holder);
  matchMedia('(prefers-color-scheme: dark)').addEventListener('change', draw);
}
