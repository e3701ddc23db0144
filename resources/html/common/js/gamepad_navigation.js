// Makes a page usable with a game controller alone. The library loads this file into the pages of the controller table,
// behind spatial_navigation.js, and calls the four functions at its end; the game decides what it sends.
//
// Status: {"isConnected": bool, "primaryBtn": "0", "secondaryBtn": "1", "secondaryBtnText": "..."}. The buttons are
// indexes of the standard layout: 0 to 3 the face buttons (below, right, left, above), 4 and 5 the shoulders, 6 and 7 the
// triggers, 9 menu, 12 to 15 up, down, left, right.
// Input: {"button": index or "up" ... "right", "pressed": bool}, without "pressed" a press and its release;
// {"axes": [leftX, leftY, rightX, rightY]}, each -1 to 1, down and right positive; or a list of such.
//
// For pages: data-pad-start marks where the focus begins, data-pad-back what the secondary button clicks. A cancelable
// "padback" event comes first.
(function () {
  'use strict';
  if (window.handleControllerInput) return;

  const NAMES = { up: 12, down: 13, left: 14, right: 15 };
  const DIRECTIONS = { 12: 'up', 13: 'down', 14: 'left', 15: 'right' };
  const LEFT_FACE = 2, UPPER_FACE = 3, PREVIOUS = 4, NEXT = 5, SCROLL_UP = 6, SCROLL_DOWN = 7, MENU = 9;
  const REPEAT_AFTER_MS = 400, REPEAT_EVERY_MS = 110;
  const STICK_ON = 0.55, STICK_OFF = 0.35;  // apart, so that a stick at the edge does not stutter
  const SCROLL_DEAD_ZONE = 0.2, SCROLL_PIXELS = 18;  // a frame, at full tilt
  const GLYPHS = ['A', 'B', 'X', 'Y'];
  const WORDS = {
    en: { move: 'Move', select: 'Select', type: 'Type', choose: 'Choose', back: 'Back', press: 'Press', remove: 'Delete',
      space: 'Space', done: 'Done', adjust: 'Adjust' },
    ko: { move: '이동', select: '선택', type: '입력', choose: '고르기', back: '뒤로', press: '누르기', remove: '지우기',
      space: '띄어쓰기', done: '완료', adjust: '조절' },
  };
  const NOT_TEXT = ['button', 'checkbox', 'color', 'date', 'datetime-local', 'file', 'hidden', 'image', 'month', 'radio',
    'range', 'reset', 'submit', 'time', 'week'];

  const pad = { primary: 0, secondary: 1, secondaryText: '', connected: false, shown: true };
  let overlay = null;           // the screen keyboard or a list, while one is open
  let repeatTimer = 0, stickDirection = null, scrollTilt = [0, 0], scrollFrame = 0;

  const words = () => WORDS[(document.documentElement.lang || 'en').slice(0, 2)] || WORDS.en;
  const isTextField = element => element.isContentEditable || element.tagName === 'TEXTAREA' ||
    element.tagName === 'INPUT' && !NOT_TEXT.includes(element.type);
  const takesText = element => isTextField(element) && !element.readOnly;
  const isSlider = element => element.tagName === 'INPUT' && element.type === 'range';

  // An open dialog keeps the focus to itself.
  function scope() {
    const open = Array.from(document.querySelectorAll('dialog[open], [aria-modal=true]'))
      .filter(each => each.checkVisibility({ checkVisibilityCSS: true }));
    return open.length ? open[open.length - 1] : document;
  }

  function focused() {
    const element = document.activeElement;
    return element && element !== document.body && scope().contains(element) ? element : null;
  }

  function announce(element, ...types) {
    for (const type of types) element.dispatchEvent(new Event(type, { bubbles: true }));
  }

  // --- moving

  function adjust(slider, direction) {
    const before = slider.value;
    if (direction === 'right') slider.stepUp();
    else slider.stepDown();
    if (slider.value !== before) announce(slider, 'input', 'change');
  }

  function move(direction) {
    if (overlay) return overlay.move(direction);
    const element = focused();
    if (element && isSlider(element) && (direction === 'left' || direction === 'right')) return adjust(element, direction);
    SpatialNavigation.move(direction, scope());
    showHints();
  }

  function hold(direction) {
    release();
    move(direction);
    repeatTimer = setTimeout(function again() {
      repeatTimer = setTimeout(again, REPEAT_EVERY_MS);
      move(direction);
    }, REPEAT_AFTER_MS);
  }

  function release() {
    clearTimeout(repeatTimer);
    repeatTimer = 0;
  }

  function step(offset) {
    const elements = SpatialNavigation.focusables(scope());
    const target = elements[elements.indexOf(focused()) + offset];
    if (target) SpatialNavigation.focus(target);
    else if (!focused()) SpatialNavigation.focusFirst(scope());
    showHints();
  }

  // --- acting

  function activate() {
    if (overlay) return overlay.press();
    const element = focused();
    if (!element) SpatialNavigation.focusFirst(scope());
    else if (takesText(element)) open(PadOverlays.keyboard(element, close));
    else if (element.tagName === 'SELECT' && !element.multiple) open(PadOverlays.list(element, close));
    else if (!isSlider(element)) element.click();
    showHints();
  }

  function open(made) {
    release();
    overlay = made;
  }

  function close() {
    if (!overlay) return;
    overlay.remove();
    overlay = null;
    showHints();
  }

  function back() {
    if (overlay) return close();
    if (!document.dispatchEvent(new CustomEvent('padback', { cancelable: true }))) return;
    const root = scope();
    const target = root.querySelector('[data-pad-back]');
    if (target) target.click();
    else if (root.tagName === 'DIALOG') root.close();
    showHints();
  }

  function submit() {
    const form = focused() && focused().form;
    close();
    if (form) form.requestSubmit();
  }

  function press(button) {
    if (button === pad.primary) return activate();
    if (button === pad.secondary) return back();
    if (button === MENU) return overlay ? close() : submit();
    if (overlay) return overlay.shortcut(button === LEFT_FACE ? 'remove' : button === UPPER_FACE ? 'space' : '');
    const from = focused() || document.body.lastElementChild;
    if (button === PREVIOUS) step(-1);
    if (button === NEXT) step(1);
    if (button === SCROLL_UP) SpatialNavigation.scroll(from, 'up');
    if (button === SCROLL_DOWN) SpatialNavigation.scroll(from, 'down');
  }

  // --- sticks

  function directionOf(x, y) {
    const limit = stickDirection ? STICK_OFF : STICK_ON;
    if (Math.max(Math.abs(x), Math.abs(y)) < limit) return null;
    if (Math.abs(x) > Math.abs(y)) return x > 0 ? 'right' : 'left';
    return y > 0 ? 'down' : 'up';
  }

  function scrollOn() {
    const [x, y] = scrollTilt;
    scrollFrame = 0;
    if (!x && !y) return;
    const root = scope() === document ? document.scrollingElement : scope();
    root.scrollBy(x * SCROLL_PIXELS, y * SCROLL_PIXELS);
    scrollFrame = requestAnimationFrame(scrollOn);
  }

  function tilt(axes) {
    const value = index => Number(axes[index]) || 0;
    const direction = directionOf(value(0), value(1));
    if (direction !== stickDirection) {
      stickDirection = direction;
      if (direction) hold(direction);
      else release();
    }
    scrollTilt = [value(2), value(3)].map(each => Math.abs(each) < SCROLL_DEAD_ZONE ? 0 : each);
    if (!scrollFrame) scrollOn();
  }

  // --- hints

  function hint(glyph, text) {
    const item = document.createElement('span');
    item.className = 'keymap_item';
    const key = document.createElement('i');
    key.className = glyph === 'dpad' ? 'keymap_btn keymap_dpad' : 'keymap_btn keymap_' + glyph.toLowerCase();
    key.textContent = glyph === 'dpad' ? '' : glyph;
    item.append(key, text);
    return item;
  }

  function primaryWord(element) {
    if (overlay) return overlay.isKeyboard ? words().press : words().choose;
    if (element && takesText(element)) return words().type;
    return element && element.tagName === 'SELECT' ? words().choose : words().select;
  }

  function hintList() {
    const element = focused();
    const slider = element && isSlider(element) && !overlay;
    const hints = [hint('dpad', slider ? words().adjust : words().move)];
    if (!slider) hints.push(hint(GLYPHS[pad.primary] || String(pad.primary), primaryWord(element)));
    if (overlay && overlay.isKeyboard) hints.push(hint('X', words().remove), hint('Y', words().space));
    hints.push(hint(GLYPHS[pad.secondary] || String(pad.secondary),
      overlay && overlay.isKeyboard ? words().done : pad.secondaryText || words().back));
    return hints;
  }

  function showHints() {
    const box = document.querySelector('.keymap_info');
    if (!box) return;
    box.style.display = pad.connected && pad.shown ? '' : 'none';
    box.replaceChildren(...hintList());
  }

  // Who plays with the pad sees focus and hints, who takes the mouse sees neither.
  function show(shown) {
    if (!document.body) return;
    pad.shown = shown;
    document.body.classList.toggle('focus_on', shown);
    showHints();
  }

  // --- what the library calls

  function takeInput(input) {
    if (Array.isArray(input)) return input.forEach(takeInput);
    if (!input || typeof input !== 'object') return;
    if (Array.isArray(input.axes)) return tilt(input.axes);
    const button = input.button in NAMES ? NAMES[input.button] : Number(input.button ?? NaN);
    if (!Number.isInteger(button)) return;
    const direction = DIRECTIONS[button];
    if (direction && input.pressed === undefined) return release(), move(direction);
    if (direction) return input.pressed ? hold(direction) : release();
    if (input.pressed !== false) press(button);
  }

  window.handleControllerInput = function (data) {
    pad.connected = true;
    if (!pad.shown) show(true);
    takeInput(data);
    showHints();
  };

  window.initClientGamePad = function (status) {
    const button = (value, standard) => Number.isInteger(Number(value ?? NaN)) ? Number(value) : standard;
    window.gameControllerStatus = status;
    pad.connected = Boolean(status && status.isConnected);
    pad.primary = button(status && status.primaryBtn, 0);
    pad.secondary = button(status && status.secondaryBtn, 1);
    pad.secondaryText = String(status && status.secondaryBtnText || '');
    if (pad.connected && document.body && !focused()) SpatialNavigation.focusFirst(scope());
    showHints();
  };

  window.handleFocusGained = function () { show(true); };

  // Nobody tells of a release that happens elsewhere.
  window.handleFocusLost = function () {
    release();
    stickDirection = null;
    scrollTilt = [0, 0];
    show(false);
  };

  // --- start

  // A short page may be whole before it gets its scripts; what waits for the document then never comes.
  function begin() {
    let box = document.querySelector('.keymap_info');
    if (!box) {
      box = document.createElement('div');
      box.className = 'keymap_info';
      document.body.append(box);
    }
    show(true);
    document.addEventListener('focusin', showHints);
    if (window.gameControllerStatus) initClientGamePad(window.gameControllerStatus);
    else location.href = 'zemosdk://gamepadinit?use=true';  // asks for it; nothing is loaded
  }

  function onMouse(event) {
    // A page that moves below a resting mouse makes events too.
    if (event.isTrusted && (event.type === 'mousedown' || event.movementX || event.movementY) && pad.shown) show(false);
  }

  for (const type of ['mousedown', 'mousemove']) document.addEventListener(type, onMouse, { capture: true, passive: true });

  function whenLoaded() {
    if (document.readyState === 'complete') begin();
    else window.addEventListener('load', begin);
  }

  const overlays = document.createElement('script');
  overlays.src = new URL('pad_overlays.js', document.currentScript.src).href;
  overlays.addEventListener('load', whenLoaded);
  document.currentScript.after(overlays);
})();
