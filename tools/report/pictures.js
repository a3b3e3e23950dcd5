'use strict';

// Each pixel takes a whole number of the screen's, lest some of them come out larger than others.
function keep_exact(stage, shown) {
  const fit = () => {
    const pixel = shown.scale * Math.max(1, Math.floor(devicePixelRatio)) / devicePixelRatio;
    stage.style.setProperty('--shown-width', `${shown.width * pixel}px`);
    stage.style.setProperty('--shown-height', `${shown.height * pixel}px`);
  };
  addEventListener('resize', fit);
  fit();
}

// The divider of one comparison, told to screen readers as the value of a slider.
function divider(shown) {
  const first = make('img', {slot: 'first', src: shown.before, width: shown.width,
                             height: shown.height, alt: `Before: ${shown.caption}`});
  const second = make('img', {slot: 'second', src: shown.after, width: shown.width,
                              height: shown.height, alt: `After: ${shown.caption}`});
  const slider = make('img-comparison-slider', {
    tabindex: 0, role: 'slider', 'aria-valuemin': 0, 'aria-valuemax': 100,
    'aria-label': `Divider between before and after: ${shown.caption}`}, first, second);
  const tell = () => slider.setAttribute('aria-valuenow', Math.round(slider.value));
  slider.addEventListener('slide', tell);
  slider.addEventListener('keydown', event => {
    if (event.key !== 'Home' && event.key !== 'End') return;
    event.preventDefault();
    slider.value = event.key === 'Home' ? 0 : 100;
    tell();
  });
  tell();
  return {slider, first};
}

// "2  Meadow · 3:1 · 180×132 pixels at 588, 1556 · luma PSNR −1.01 dB"
function picture_caption(shown, number) {
  const [x, y, width, height] = shown.region;
  const facts = [shown.caption, shown.scale ? `${shown.scale}:1` : null,
                 `${width}\u00d7${height}\u00a0pixels` + (shown.scale ? ` at ${x},\u00a0${y}` : ''),
                 shown.gained == null ? null : 'luma PSNR '];
  const caption = make('figcaption', null,
                       shown.scale ? make('span', {class: 'number'}, number) : null,
                       facts.filter(Boolean).join(' \u00b7 '));
  if (shown.gained != null) {
    caption.append(make('strong', {class: shown.gained < 0 ? 'worse' : 'better'},
                        with_unit(signed(shown.gained, 2), 'dB')));
  }
  return caption;
}

function comparison(shown, number) {
  const {slider, first} = divider(shown);
  const left = make('span', {class: 'tag left'}, 'before');
  const stage = make('div', {class: shown.scale ? 'stage exact' : 'stage'}, slider, left,
                     make('span', {class: 'tag right'}, 'after'));
  if (shown.scale) {
    keep_exact(stage, shown);
  } else {
    stage.style.width = `max(480px, ${88 * shown.width / shown.height}vh)`;
  }
  const figure = make('figure', {id: shown.scale ? `part-${number}` : null}, stage,
                      picture_caption(shown, number));
  const show_left = what => {
    if (!shown.clean) return;
    first.src = shown[what];
    first.alt = `${what}: ${shown.caption}`;
    left.textContent = what;
  };
  return {figure, stage, show_left};
}

// Frames about the parts in the whole picture; their numbers lead to the parts.
function marker(part, number, whole) {
  const [, , width, height] = whole.region;
  const [x, y, part_width, part_height] = part.region;
  const percent = (value, of) => `${100 * value / of}%`;
  const mark = make('a', {class: 'marker', href: `#part-${number}`,
                          'aria-label': `Part ${number}: ${part.caption}`},
                    make('span', null, number));
  mark.style.left = percent(x, width);
  mark.style.top = percent(y, height);
  mark.style.width = percent(part_width, width);
  mark.style.height = percent(part_height, height);
  return mark;
}

function left_choice(show_left) {
  const choices = ['before', 'clean'].map(what => {
    const input = make('input', {type: 'radio', name: 'left', value: what,
                                 checked: what === 'before' ? '' : null});
    input.addEventListener('change', () => show_left(what));
    return make('label', null, input, ` ${what}`);
  });
  return make('fieldset', null, make('legend', null, 'On the left'), ...choices);
}

function comparisons() {
  const wholes = page.comparisons.filter(shown => !shown.scale);
  const parts = page.comparisons.filter(shown => shown.scale);
  const shown_wholes = wholes.map(whole => {
    const made = comparison(whole);
    parts.forEach((part, i) => made.stage.append(marker(part, i + 1, whole)));
    return made;
  });
  const shown_parts = parts.map((part, i) => comparison(part, i + 1));
  const all = [...shown_wholes, ...shown_parts];
  const choice = page.comparisons.some(shown => shown.clean)
    ? left_choice(what => all.forEach(made => made.show_left(what))) : null;
  const hint = 'Drag the divider, or focus it and press the arrow keys, Home or End.' +
    (parts.length > 1 ? ' Parts stand in the order of what they gained, the worst first.' : '');
  return section('Pictures', make('p', {class: 'note'}, hint), choice,
                 ...shown_wholes.map(made => made.figure),
                 make('div', {class: 'comparisons'}, ...shown_parts.map(made => made.figure)));
}
