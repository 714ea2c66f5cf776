import { clock, h, icon, iconButton, short } from './dom.js';
import { live } from './live.js';
import { fillArt, makeArt } from './looks.js';
import { player } from './player.js';
import { queue } from './queue.js';
import { tr } from './text.js';

/** @param {HTMLElement} bar */
export function setUpPlayer(bar) {
  const art = makeArt();
  const title = h('bdi');
  const artist = h('small');
  const play = iconButton('play', tr('Play'), () => player.toggle());
  const time = h('time');
  const length = h('time');
  const seek = h('input', { type: 'range', min: 0, max: 1, step: 1, value: 0, 'aria-label': tr('Position in the track') });
  const volume = h('input', { type: 'range', min: 0, max: 100, value: 100, class: 'volume', 'aria-label': tr('Volume') });
  const output = h('select', { 'aria-label': tr('Where to play') }, h('option', { value: 'here' }, tr('Here')), h('option', { value: 'machine' }, tr('This machine')));
  bar.append(
    h('div', { class: 'playing' }, art, h('span', { class: 'text' }, title, artist)),
    h('div', { class: 'buttons' }, iconButton('previous', tr('Previous'), () => player.previous()), play, iconButton('next', tr('Next'), () => player.next())),
    h('div', { class: 'seek' }, time, seek, length),
    h('div', { class: 'output' }, volume, output),
  );
  let isSeeking = false;
  seek.addEventListener('input', () => {
    isSeeking = true;
    time.textContent = clock(seek.valueAsNumber);
  });
  seek.addEventListener('change', () => {
    isSeeking = false;
    player.seek(seek.valueAsNumber);
  });
  volume.addEventListener('input', () => player.setVolume(volume.valueAsNumber));
  output.addEventListener('change', () => player.setOutput(output.value));

  let said = '';
  function draw() {
    const state = player.state;
    bar.hidden = !state.active && !queue.items.length && !live.player?.active;
    if (bar.hidden) return;
    title.textContent = state.title ? short(state.title) : tr('Nothing plays');
    artist.textContent = short(state.artist || ' ').trim();
    fillArt(art, state.title, state.icon, 96);
    const label = state.paused ? tr('Play') : tr('Pause');
    if (said !== label) {
      said = label;
      play.setAttribute('aria-label', label);
      play.title = label;
      play.replaceChildren(icon(state.paused ? 'play' : 'pause'));
    }
    seek.max = String(Math.max(1, Math.floor(state.duration)));
    seek.disabled = !(state.duration > 0);
    if (!isSeeking) {
      seek.value = String(state.time);
      time.textContent = clock(state.time);
    }
    seek.setAttribute('aria-valuetext', tr('{time} of {length}', { time: clock(state.time), length: clock(state.duration) }));
    length.textContent = clock(state.duration);
    volume.value = String(state.volume);
    output.value = player.isHere ? 'here' : 'machine';
    output.options[1].disabled = !live.player?.available;
    output.options[1].textContent = live.player?.available ? tr('This machine') : tr('This machine (needs mpv)');
    const session = navigator.mediaSession;
    if (session) {
      const known = session.metadata?.title;
      if (state.title && known !== state.title) session.metadata = new MediaMetadata({ title: state.title, artist: state.artist });
    }
  }
  player.addEventListener('change', draw);
  queue.addEventListener('change', draw);
  draw();
}
