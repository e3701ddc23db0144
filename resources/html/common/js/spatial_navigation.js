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
  const FAR_AWAY = 0.9;      // of the visible part: beyond it the page is scrolled before the focus leaves
  const AHEAD_WEIGHT = 13;   // a gap ahead counts more than one aside: rows and columns are kept
  const isHorizontal = direction => direction === 'left' || direction === 'right';

  function isUsable(element) {
    if (element.tabIndex < 0 || element.matches(':disabled') || element.closest('[inert], [aria-hidden=true]')) return false;
    if (!element.checkVisibility({ checkVisibilityCSS: true })) return false;
    const rect = element.getBoundingClientRect();
    return rect.width > 0 && rect.height > 0;
  }

  function focusables(root) {
    return Array.from((root || document).querySelectorAll(FOCUSABLE)).filter(isUsable);
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

  function distance(from, to) {
    const aside = (from.low + from.high - to.low - to.high) / 2;
    const ahead = gap(from, to);
    return AHEAD_WEIGHT * ahead * ahead + aside * aside;
  }

  // What lies straight ahead wins over what lies aside, sideways always; up and down only while it is not further away
  // than the whole of the other, so that a row of buttons is not jumped over for a heading's link below it.
  function beamWins(from, straight, other, direction) {
    if (!inBeam(from, straight) || inBeam(from, other)) return false;
    if (from.far > other.near || isHorizontal(direction)) return true;
    return gap(from, straight) < Math.max(1, other.far - from.far);
  }

  function isBetter(from, candidate, best, direction) {
    if (beamWins(from, candidate, best, direction)) return true;
    if (beamWins(from, best, candidate, direction)) return false;
    return distance(from, candidate) < distance(from, best);
  }

  function next(direction, element, elements) {
    const from = turned(element.getBoundingClientRect(), direction);
    let best = null, bestRect = null;
    for (const candidate of elements) {
      if (candidate === element) continue;
      const rect = turned(candidate.getBoundingClientRect(), direction);
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

  // So far out of sight that a reader would miss what lies between.
  function isFarAway(element, candidate, direction) {
    const target = scroller(element, direction);
    if (!target || !target.contains(candidate)) return false;
    const extent = isHorizontal(direction) ? target.clientWidth : target.clientHeight;
    return gap(turned(element.getBoundingClientRect(), direction),
      turned(candidate.getBoundingClientRect(), direction)) > FAR_AWAY * extent;
  }

  function isInSight(element) {
    const rect = element.getBoundingClientRect();
    return rect.bottom > 0 && rect.right > 0 && rect.top < innerHeight && rect.left < innerWidth;
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
