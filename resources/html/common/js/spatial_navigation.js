// Which element lies next to another in a direction, and moving the focus there. Geometry only: it keeps no state, draws
// nothing and knows of no game controller.
//
//   SpatialNavigation.move('down')                     moves the focus; the element that has it now, or null
//   SpatialNavigation.next('left', element, elements)  the neighbour among `elements`, or null at the edge
//   SpatialNavigation.focusables(root)                 what can have the focus below `root`, in document order
(function () {
  'use strict';
  if (window.SpatialNavigation) return;

  const FOCUSABLE = 'a[href], area[href], button, input:not([type=hidden]), select, textarea, summary, [tabindex], ' +
    '[contenteditable=""], [contenteditable=true]';
  const SCROLL_STEP = 0.6;   // of the visible part
  const AHEAD_WEIGHT = 13;   // a gap ahead counts more than one aside: rows and columns are kept
  const isHorizontal = direction => direction === 'left' || direction === 'right';

  // Editable text can have the focus without saying so.
  const isSkipped = element => element.tabIndex < 0 && !(element.isContentEditable && !element.hasAttribute('tabindex'));

  function isUsable(element) {
    if (isSkipped(element) || element.matches(':disabled') || element.closest('[inert], [aria-hidden=true]')) return false;
    if (!element.checkVisibility({ checkVisibilityCSS: true })) return false;
    const rect = element.getBoundingClientRect();
    return rect.width > 0 && rect.height > 0;
  }

  function focusables(root) {
    return Array.from((root || document).querySelectorAll(FOCUSABLE)).filter(isUsable);
  }

  // A control inside its label is one thing to the eye.
  function place(element) {
    const label = element.labels && element.labels[0];
    return (label && label.contains(element) ? label : element).getBoundingClientRect();
  }

  // Every move becomes one towards growing numbers: `near` to `far` along it, `low` to `high` across.
  function turned(rect, direction) {
    switch (direction) {
      case 'right': return { near: rect.left, far: rect.right, low: rect.top, high: rect.bottom };
      case 'left': return { near: -rect.right, far: -rect.left, low: rect.top, high: rect.bottom };
      case 'down': return { near: rect.top, far: rect.bottom, low: rect.left, high: rect.right };
      default: return { near: -rect.bottom, far: -rect.top, low: rect.left, high: rect.right };
    }
  }

  const liesAhead = (from, to) => from.near < to.near && from.far < to.far;
  const inBeam = (from, to) => to.low < from.high && to.high > from.low;
  const gap = (from, to) => Math.max(0, to.near - from.far);

  // Across, the beginnings count: below a wide field lies what begins where it begins, as one reads.
  function distance(from, to) {
    const aside = from.low - to.low;
    const ahead = gap(from, to);
    return AHEAD_WEIGHT * ahead * ahead + aside * aside;
  }

  const gapAside = (from, to) => Math.max(0, to.low - from.high, from.low - to.high);

  // What lies straight ahead wins over what lies aside, sideways always; up and down only while it is not further away
  // than the whole of the other, so that a row of buttons is not jumped over for a heading's link below it.
  function beamWins(from, straight, other, direction) {
    if (!inBeam(from, straight) || inBeam(from, other)) return false;
    if (isHorizontal(direction) || gapAside(from, other) > gap(from, other)) return true;
    return gap(from, straight) < Math.max(1, other.far - from.far);
  }

  function isBetter(from, candidate, best, direction) {
    if (beamWins(from, candidate, best, direction)) return true;
    if (beamWins(from, best, candidate, direction)) return false;
    return distance(from, candidate) < distance(from, best);
  }

  function next(direction, element, elements) {
    const from = turned(place(element), direction);
    let best = null, bestRect = null;
    for (const candidate of elements) {
      if (candidate === element) continue;
      const rect = turned(place(candidate), direction);
      if (!liesAhead(from, rect)) continue;
      if (best && !isBetter(from, rect, bestRect, direction)) continue;
      best = candidate;
      bestRect = rect;
    }
    return best;
  }

  function canScroll(element, direction) {
    const style = getComputedStyle(element);
    const root = element === document.scrollingElement;
    const overflow = isHorizontal(direction) ? style.overflowX : style.overflowY;
    if (root ? overflow === 'hidden' : overflow !== 'auto' && overflow !== 'scroll') return false;
    switch (direction) {
      case 'left': return element.scrollLeft > 0;
      case 'up': return element.scrollTop > 0;
      case 'right': return element.scrollLeft + element.clientWidth < element.scrollWidth - 1;
      default: return element.scrollTop + element.clientHeight < element.scrollHeight - 1;
    }
  }

  // The closest ancestor that can still go in the direction.
  function scroller(element, direction) {
    for (let each = element && element.parentElement; each; each = each.parentElement) {
      if (each !== document.scrollingElement && canScroll(each, direction)) return each;
    }
    const page = document.scrollingElement;
    return page && canScroll(page, direction) ? page : null;
  }

  function scroll(element, direction) {
    const target = scroller(element, direction);
    if (!target) return false;
    const sign = direction === 'left' || direction === 'up' ? -1 : 1;
    if (isHorizontal(direction)) target.scrollBy({ left: sign * SCROLL_STEP * target.clientWidth });
    else target.scrollBy({ top: sign * SCROLL_STEP * target.clientHeight });
    return true;
  }

  // The part of the screen in which an element can be seen.
  const portOf = target => target === document.scrollingElement
    ? { left: 0, top: 0, right: innerWidth, bottom: innerHeight } : target.getBoundingClientRect();

  const overlap = (a, b) => a.bottom > b.top && a.right > b.left && a.top < b.bottom && a.left < b.right;
  const isInSight = element => overlap(element.getBoundingClientRect(), portOf(document.scrollingElement));

  // So far out of sight that a step of scrolling would not show it: a reader would miss what lies between.
  function isFarAway(element, candidate, direction) {
    const target = scroller(element, direction);
    if (!target || !target.contains(candidate) || !isInSight(element)) return false;
    const extent = isHorizontal(direction) ? target.clientWidth : target.clientHeight;
    return gap(turned(portOf(target), direction), turned(place(candidate), direction)) > SCROLL_STEP * extent;
  }

  function focus(element) {
    element.focus({ preventScroll: true });
    element.scrollIntoView({ block: 'nearest', inline: 'nearest' });
    return element;
  }

  // Where a controller begins: where the page says so, else at the first element in sight.
  function focusFirst(root) {
    const elements = focusables(root);
    const first = elements.find(each => each.matches('[data-pad-start], [autofocus]')) || elements.find(isInSight) || elements[0];
    return first ? focus(first) : null;
  }

  function move(direction, root) {
    const scope = root || document;
    const current = document.activeElement;
    if (!current || current === document.body || !scope.contains(current)) return focusFirst(root);
    const neighbour = next(direction, current, focusables(root));
    if (neighbour && !isFarAway(current, neighbour, direction)) return focus(neighbour);
    scroll(current, direction);
    return null;
  }

  window.SpatialNavigation = { focusables, next, move, scroll, focus, focusFirst };
})();
