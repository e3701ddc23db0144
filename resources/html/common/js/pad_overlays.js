// What a controller needs where a page has native controls that only a keyboard or a mouse can fill: a keyboard on the
// screen for text fields, a list for <select>. gamepad_navigation.js loads this file and drives it.
//
// Both leave the focus where it is: the field keeps its caret, and what is picked here is only marked. An overlay has
// move(direction), press(), shortcut('remove' | 'space') and remove(); `done` is called when it wants to be closed.
(function () {
  'use strict';
  if (window.PadOverlays) return;

  const LETTERS = ['1234567890', 'qwertyuiop', 'asdfghjkl@', 'zxcvbnm.-_'];
  const SYMBOLS = ['1234567890', '!"#$%&\'()*', '+,/:;<=>?@', '[\\]^`{|}~_'];
  const ICONS = { shift: '\u21e7', symbols: '#+=', letters: 'abc', space: '', left: '\u2190', right: '\u2192', remove: '\u232b',
    done: '\u23ce' };
  const ROOM = 24;  // pixels between a field and the keyboard

  function make(className, parent) {
    const element = document.createElement('div');
    element.className = className;
    if (parent) parent.append(element);
    return element;
  }

  // A panel of things to mark and press. Above everything, also above an open dialog.
  function panel(className, modalOf) {
    const root = make('pad_panel ' + className);
    (modalOf.closest('dialog[open]') || document.body).append(root);
    let marked = null;
    const items = () => Array.from(root.querySelectorAll('.pad_item'));
    function mark(item) {
      if (marked) marked.classList.remove('pad_marked');
      marked = item;
      marked.classList.add('pad_marked');
      marked.scrollIntoView({ block: 'nearest' });
    }
    function item(parent, text, press) {
      const element = make('pad_item', parent);
      element.textContent = text;
      element.padPress = press;
      element.addEventListener('mousedown', event => event.preventDefault());  // the field keeps the focus
      element.addEventListener('click', () => { mark(element); press(); });
      return element;
    }
    return {
      root, item, mark, items,
      marked: () => marked,
      move(direction) {
        const next = SpatialNavigation.next(direction, marked, items());
        if (next) mark(next);
      },
      press() { marked.padPress(); },
      shortcut() {},
      remove() { root.remove(); },
    };
  }

  // --- keyboard

  // As typed by hand: the page gets its input events, limits hold, undo works.
  const insert = text => document.execCommand('insertText', false, text);
  const erase = () => document.execCommand('delete', false);

  function moveCaret(field, offset) {
    if (field.isContentEditable) return getSelection().modify('move', offset < 0 ? 'backward' : 'forward', 'character');
    if (field.selectionStart === null) return undefined;  // a kind of field that has no caret to ask for
    const place = Math.max(0, Math.min(field.value.length, field.selectionStart + offset));
    return field.setSelectionRange(place, place);
  }

  function caretToEnd(field) {
    field.focus({ preventScroll: true });
    if (field.isContentEditable) getSelection().selectAllChildren(field), getSelection().collapseToEnd();
    else if (field.selectionStart !== null) field.setSelectionRange(field.value.length, field.value.length);
  }

  // A field below the keyboard is lifted above it, as a phone does.
  function lift(field, root) {
    const hidden = field.getBoundingClientRect().bottom + ROOM - root.getBoundingClientRect().top;
    if (hidden <= 0) return () => {};
    const body = document.body, before = body.style.translate;
    body.style.translate = `0 ${-Math.ceil(hidden)}px`;
    root.style.translate = `0 ${Math.ceil(hidden)}px`;  // what is fixed in a moved body moves with it
    return () => { body.style.translate = before; };
  }

  function keyboard(field, done) {
    const made = panel('pad_keyboard', field);
    let shifted = false, symbols = false;

    function key(row, id, press) {
      const element = made.item(row, ICONS[id], press);
      element.classList.add('pad_key_' + id);
      element.dataset.key = id;
      if (id === 'shift') element.classList.toggle('pad_on', shifted);
      return element;
    }
    function character(row, text) {
      made.item(row, text, () => {
        insert(text);
        if (shifted) change(() => { shifted = false; });
      }).dataset.key = text;
    }
    // The mark stays in its place of the grid when the letters under it change.
    function change(what) {
      const place = made.items().indexOf(made.marked());
      what();
      draw();
      made.mark(made.items()[place] || made.items()[0]);
    }
    function draw() {
      made.root.replaceChildren();
      for (const line of symbols ? SYMBOLS : LETTERS) {
        const row = make('pad_row', made.root);
        for (const each of line) character(row, shifted ? each.toUpperCase() : each);
      }
      const row = make('pad_row', made.root);
      key(row, 'shift', () => change(() => { shifted = !shifted; }));
      key(row, symbols ? 'letters' : 'symbols', () => change(() => { symbols = !symbols; shifted = false; }));
      key(row, 'space', () => insert(' '));
      key(row, 'left', () => moveCaret(field, -1));
      key(row, 'right', () => moveCaret(field, 1));
      key(row, 'remove', erase);
      key(row, 'done', done);
    }

    caretToEnd(field);
    draw();
    made.mark(made.items()[10]);
    const settle = lift(field, made.root);
    return {
      isKeyboard: true,
      move: made.move,
      press: made.press,
      shortcut(what) {
        if (what === 'remove') erase();
        if (what === 'space') insert(' ');
      },
      remove() {
        settle();
        made.remove();
      },
    };
  }

  // --- list

  function list(select, done) {
    const made = panel('pad_list', select);
    Array.from(select.options).forEach((option, index) => {
      if (option.disabled || option.hidden) return;
      const item = made.item(made.root, option.label, () => {
        const changed = select.selectedIndex !== index;
        select.selectedIndex = index;
        if (changed) for (const type of ['input', 'change']) select.dispatchEvent(new Event(type, { bubbles: true }));
        done();
      });
      item.dataset.value = option.value;
      if (option.selected) {
        item.classList.add('pad_on');
        made.mark(item);
      }
    });
    if (!made.marked() && made.items().length) made.mark(made.items()[0]);
    const rect = select.getBoundingClientRect();
    const height = made.root.offsetHeight;
    made.root.style.left = `${Math.max(8, Math.min(rect.left, innerWidth - made.root.offsetWidth - 8))}px`;
    made.root.style.minWidth = `${rect.width}px`;
    made.root.style.top = `${Math.max(8, Math.min(rect.bottom + 6, innerHeight - height - 8))}px`;
    return made;
  }

  window.PadOverlays = { keyboard, list };
})();
