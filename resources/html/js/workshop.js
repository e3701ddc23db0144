// Page to game: the form's address, links with the game's scheme, and the object `store`, which the game binds. Game to
// page: scripts that call onGame and onEmblem, and nextOrder, whose result is the answer.
const paintNumber = 5;  // in the game's price list
const orders = [];
const part = (id) => document.getElementById(id);
const say = (text) => { part('said').textContent = text; };

function nextOrder() { return orders.shift(); }

function onGame({ credits, sold, refused }) {
  part('credits').textContent = credits.toLocaleString('en-US');
  if (sold === paintNumber) part('hull').classList.add('painted'), say('It shines.');
  if (refused === paintNumber) say('That is more than you have.');
}

function onEmblem(name) { say(name ? `Emblem: ${name}` : 'No emblem, then.'); }

part('paint').addEventListener('click', () => {
  orders.push(paintNumber);
  window.store?.postMessage();  // before it is bound: the game asks when it is
});
part('choose').addEventListener('click', () => { location.href = 'game://emblem'; });
part('back').addEventListener('click', () => { location.href = 'game://close'; });

// A download that was made here; the engine's end of it is told by an alert.
const lines = ['Comet, courier', 'Length 41 m', 'Sail 1,200 m2', ''].join('\r\n');
part('plan').href = URL.createObjectURL(new Blob([lines], { type: 'text/plain' }));
window.alert = say;
