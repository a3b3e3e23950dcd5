'use strict';

const page = JSON.parse(document.getElementById('page-data').textContent);

// A new element; attributes of value null are left out, children are elements or texts.
function make(tag, attributes, ...children) {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes || {})) {
    if (value != null) element.setAttribute(name, value);
  }
  element.append(...children.filter(child => child != null));
  return element;
}

// Infinities come as their signs.
const fixed = (value, digits) => value == null ? '\u2013'
  : typeof value === 'string' ? value : typographic(value.toFixed(digits));
const signed = (value, digits) => (value > 0 ? '+' : '') + fixed(value, digits);

function section(title, ...content) {
  return make('section', {'aria-label': title}, make('h2', null, title), ...content);
}

function copy_button(text) {
  const button = make('button', {type: 'button'}, 'Copy');
  button.addEventListener('click', async () => {
    await navigator.clipboard.writeText(text);
    button.textContent = 'Copied';
  });
  return button;
}

function header() {
  const head = make('header', null, make('h1', null, page.title));
  if (page.summary) head.append(make('p', {class: 'lead'}, page.summary));
  if (page.remarks.length) {
    head.append(make('ul', {class: 'remarks', 'aria-label': 'Remarks'},
                     ...page.remarks.map(remark => make('li', null, remark))));
  }
  if (page.command) {
    const command = make('pre', {tabindex: 0, 'aria-label': 'The command that makes this again'},
                         page.command);
    head.append(make('div', {class: 'command'}, command,
                     navigator.clipboard ? copy_button(page.command) : null));
  }
  return head;
}

// "before 33.00 dB, −6.60 dB: worse"
function judgement(score) {
  if (score.baseline == null) return null;
  const baseline = with_unit(fixed(score.baseline, score.digits), score.unit);
  const text = `${score.baseline_name} ${baseline}`;
  const change = score.value - score.baseline;
  if (!Number.isFinite(change)) return make('p', null, text);
  const shown = +change.toFixed(score.digits);
  const better = (shown > 0) === score.higher_is_better;
  const verdict = shown === 0 ? 'equal' : better ? 'better' : 'worse';
  const by = with_unit(signed(shown, score.digits), score.unit);
  return make('p', null, `${text}, `, make('strong', {class: verdict}, `${by}: ${verdict}`));
}

function score(score) {
  const spread = score.low == null ? null
    : `between ${fixed(score.low, score.digits)} and ` +
      with_unit(fixed(score.high, score.digits), score.unit);
  return make('li', null, make('h2', null, score.name),
              make('p', {class: 'value'}, fixed(score.value, score.digits), '\u00a0',
                   make('span', {class: 'unit'}, score.unit)),
              judgement(score), spread && make('p', null, spread),
              make('p', {class: 'note'}, score.meaning));
}

// A click on a column's name sorts by it, a second one the other way round; cells without a number
// stay last.
function sort_rows(body, rows, index, ascending) {
  const rank = cell => ({'\u221e': Infinity, '\u2212\u221e': -Infinity})[cell] ?? cell;
  const order = (a, b) => {
    const [left, right] = [rank(a.cells[index]), rank(b.cells[index])];
    if (left == null || right == null) return (left == null) - (right == null);
    const both = typeof left === 'number' && typeof right === 'number';
    const difference = both ? left - right
      : String(left).localeCompare(right, 'en', {numeric: true});
    return ascending ? difference : -difference;
  };
  body.append(...[...rows].sort(order).map(row => row.element));
}

function data_table(table) {
  const numeric = table.columns.map((_, c) => table.rows.some(row => typeof row[c] === 'number'));
  const digits = table.columns.map(column => column.digits);
  const text = (cell, c) => digits[c] == null ? short(cell) : fixed(cell, digits[c]);
  const rows = table.rows.map((cells, r) => {
    const marked = r === table.marked;
    const element = make('tr', {class: marked ? 'marked' : null},
      ...cells.map((cell, c) => make('td', {class: numeric[c] ? 'numeric' : null}, text(cell, c))));
    return {cells, element};
  });
  const body = make('tbody', null, ...rows.map(row => row.element));
  const heads = table.columns.map((column, c) => {
    const button = make('button', {type: 'button'}, column.name,
                        column.unit ? make('small', null, column.unit) : null);
    const head = make('th', {scope: 'col', class: numeric[c] ? 'numeric' : null}, button);
    button.addEventListener('click', () => {
      const ascending = head.getAttribute('aria-sort') !== 'ascending';
      heads.forEach(other => other.removeAttribute('aria-sort'));
      head.setAttribute('aria-sort', ascending ? 'ascending' : 'descending');
      sort_rows(body, rows, c, ascending);
    });
    return head;
  });
  return make('div', {class: 'scroll', tabindex: 0, role: 'region', 'aria-label': table.title},
              make('table', {class: 'data'},
                   make('thead', null, make('tr', null, ...heads)), body));
}

// The numbers of a plot, for those who cannot see or point at it.
function plot_table(plot) {
  const rows = align(plot.series);
  const columns = [{name: plot.x.label, unit: plot.x.unit}];
  const data = rows.map(row => [row.x]);
  plot.series.forEach((one, s) => {
    for (const [suffix, values] of [['', one.y], [', low', one.low], [', high', one.high]]) {
      if (!values.length) continue;
      columns.push({name: one.name + suffix, unit: plot.y.unit});
      column(rows, s, values).forEach((value, r) => data[r].push(value));
    }
  });
  return data_table({title: `Numbers of the plot: ${plot.title}`, columns, rows: data});
}

function plot_figure(plot) {
  const holder = make('div', {class: 'plot', role: 'img', 'aria-label':
    `${plot.title}: ${axis_title(plot.y)} against ${axis_title(plot.x)}. Numbers follow.`});
  show_plot(plot, holder);
  return make('figure', null, make('h3', null, plot.title),
              plot.note ? make('p', {class: 'note'}, plot.note) : null, holder,
              make('details', null, make('summary', null, 'Numbers'), plot_table(plot)));
}

// Colours the map's grey levels. Where the browser shrinks the map, it averages them first, so that
// the colours in between are those of the mean.
function agreement_colours() {
  const channel = (name, at) => {
    const levels = kAgreementColours.map(c => parseInt(c.slice(at, at + 2), 16) / 255);
    return `<feFunc${name} type="table" tableValues="${levels.join(' ')}"/>`;
  };
  const holder = make('div');
  holder.innerHTML = '<svg width="0" height="0" aria-hidden="true">' +
    '<filter id="agreement-colours" color-interpolation-filters="sRGB">' +
    `<feComponentTransfer>${channel('R', 1)}${channel('G', 3)}${channel('B', 5)}` +
    '</feComponentTransfer></filter></svg>';
  return holder;
}

function agreement(shown) {
  const counts = shown.shares.map((_, count) => count);
  const title = 'Agreeing frames';
  const plot = {title, note: '', x: {label: 'Agreeing frames', unit: ''},
                y: {label: 'Share of places', unit: '%'},
                series: [{name: 'Share', mark: 'bars', x: counts, y: shown.shares, low: [],
                          high: [], labels: [], colours: kAgreementColours}]};
  const key = counts.map(count => {
    const swatch = make('span', {class: 'swatch'});
    swatch.style.background = kAgreementColours[count];
    return make('li', null, swatch, `${count} agreed: ${fixed(shown.shares[count], 1)}\u00a0%`);
  });
  const map = make('img', {src: shown.map, width: shown.width, height: shown.height,
                           alt: `Map of how many frames agreed: ${shown.caption}`});
  return make('div', {class: 'agreement'},
              make('figure', null, map, make('figcaption', null, shown.caption)),
              make('div', null, plot_figure(plot), make('ul', {class: 'key'}, ...key)));
}

function tables() {
  return make('div', {class: 'tables'}, ...page.tables.map(table => make(
    'section', {'aria-label': table.title}, make('h3', null, table.title),
    table.note ? make('p', {class: 'note'}, table.note) : null, data_table(table))));
}

function build() {
  const main = document.getElementById('page');
  document.title = page.title;
  document.getElementById('program').textContent = page.program;
  main.replaceChildren(header(), agreement_colours());
  if (page.scores.length) {
    main.append(make('ul', {class: 'scores', 'aria-label': 'Scores'}, ...page.scores.map(score)));
  }
  if (page.comparisons.length) main.append(comparisons());
  if (page.agreements.length) {
    main.append(section('How many frames agreed', ...page.agreements.map(agreement)));
  }
  if (page.plots.length) {
    main.append(section('Plots', make('div', {class: 'plots'}, ...page.plots.map(plot_figure))));
  }
  if (page.tables.length) main.append(section('Tables', tables()));
  if (page.log_lines.length) {
    main.append(section('Log of the library', make('pre', {tabindex: 0, 'aria-label': 'Log lines'},
                                                   page.log_lines.join('\n'))));
  }
}

build();
