// The first card, and what is blocked.

import { byId, coinsText, count, duration, element, quantity, setText } from './text.js';
import { names, on } from './bridge.js';
import { isFresh, verdict } from './verdict.js';
import { noteStatus, noteSilence, noteDay } from './today.js';

const mostChips = 8;
const trendSpan = 10000;
const shortestTrend = 4000;

const openedAt = Date.now();
const known = { heard: null, day: null, service: undefined, removal: undefined, openedAt };
let recent = []; // { at, energy } of the last seconds.

function showChips(list, counter, values, total = values.length) {
    const chips = values.slice(0, mostChips).map((text) => {
        const chip = element('li', '', String(text));
        chip.title = chip.textContent;
        return chip;
    });
    if (total > mostChips)
        chips.push(element('li', 'more', `and ${count(total - mostChips)} more`));
    if (!total)
        chips.push(element('li', 'more', 'none'));
    byId(list).replaceChildren(...chips);
    setText(counter, count(total));
}

const list = (value) => Array.isArray(value) ? value : [];

function showMeter(energy, low, high) {
    const isTold = typeof low === 'number' && typeof high === 'number' && high > low && low >= 0;
    const meter = byId('meter');
    meter.hidden = !isTold;
    if (!isTold)
        return;
    const most = high * 1.25;
    const share = (value) => `${Math.min(100, Math.max(0, value / most * 100))}%`;
    meter.setAttribute('aria-valuemax', String(most));
    meter.setAttribute('aria-valuenow', String(Math.min(most, Math.max(0, energy))));
    meter.setAttribute('aria-valuetext',
        `${coinsText(energy)} coins; low at ${coinsText(low)}, restored at ${coinsText(high)}`);
    byId('meter-fill').style.width = share(energy);
    byId('meter-low').style.left = share(low);
    byId('meter-high').style.left = share(high);
    setText('meter-low', coinsText(low));
    setText('meter-high', coinsText(high));
}

// Coins a minute over the last seconds; null while that is not known.
function trend() {
    const first = recent[0];
    const last = recent.at(-1);
    if (!first || last.at - first.at < shortestTrend)
        return null;
    return (last.energy - first.energy) / (last.at - first.at) * 60000;
}

function trendText(perMinute, energy) {
    if (perMinute === null || Math.abs(perMinute) < 0.5)
        return '';
    if (perMinute > 0)
        return `+${coinsText(perMinute)} a minute`;
    return energy <= 0 ? '' : `${duration(energy / -perMinute * 60000)} left`;
}

function showTask(day) {
    const title = day?.active_task_title;
    const sessions = list(day?.auto_track_sessions);
    const hasTask = typeof title === 'string' && title !== '';
    byId('task').hidden = !hasTask && !sessions.length;
    byId('task').dataset.kind = hasTask ? 'task' : 'metered';
    setText('task-caption', hasTask ? 'Working on' : 'Using');
    setText('task-title', hasTask ? title : String(sessions[0]?.bundle_id ?? ''));
    const rate = day?.active_task_earn_rate;
    const earns = hasTask && typeof rate === 'number' && rate > 0;
    const untitled = hasTask ? '' : 'its time is counted';
    setText('task-rate', earns ? `earns ${quantity(rate, 'coin', 'coins')} a minute` : untitled);
}

function showDay(day) {
    showTask(day);
    showMeter(known.heard?.energy ?? 0, day?.low_lp_threshold, day?.high_lp_threshold);
    const metered = list(day?.auto_track_apps);
    byId('metered').hidden = !metered.length;
    showChips('metered-apps', 'metered-count', metered, day?.auto_track_apps_count ?? metered.length);
}

function coveredText(state) {
    if (state === 'blocking')
        return 'Held back right now.';
    return { open: 'All of it is open now.', old: 'As it was when the blocking service last answered.' }[state] ?? '';
}

// While there is nothing else to show, the steps of the set-up are what matters.
function placeSetup(column) {
    const setup = byId('setup');
    if (setup.parentElement.id === column)
        return;
    const focused = setup.contains(document.activeElement) ? document.activeElement : null;
    if (column === 'main-column')
        byId(column).append(setup);
    else
        byId('today-card').before(setup);
    focused?.focus();
}

export function showVerdict() {
    const now = Date.now();
    const day = isFresh(known.heard, now) && isFresh(known.day, now) ? known.day : null;
    const { state, pill, sentence, asOf } = verdict(known, now);
    byId('blocking').dataset.state = state;
    byId('covered').dataset.state = state;
    setText('blocking-state', pill);
    setText('sentence', sentence);
    setText('as-of', asOf);
    setText('covered-text', coveredText(state));
    byId('balance').hidden = !known.heard;
    byId('covered').hidden = !known.heard;
    setText('coins', known.heard ? coinsText(known.heard.energy) : '–');
    setText('coins-word', (known.heard?.energy === 1 ? 'coin ' : 'coins ') + (state === 'old' ? 'then' : 'left'));
    // What the task earns stands beside it.
    const isShown = (state === 'blocking' || state === 'open') && !(trend() > 0 && day?.active_task_earn_rate > 0);
    const change = isShown ? trendText(trend(), known.heard.energy) : '';
    byId('trend').hidden = !change;
    byId('trend').dataset.way = change.startsWith('+') ? 'up' : 'down';
    setText('trend', change);
    showDay(day);
    placeSetup(state === 'old' && !known.heard ? 'main-column' : 'side-column');
    noteSilence(isFresh(known.heard, now), known.heard);
}

function statusArrived(detail, at) {
    const energy = typeof detail?.energy === 'number' ? detail.energy : 0;
    const heard = { at, blocking: detail?.blocking === true, energy };
    noteStatus(heard, known.day);
    known.heard = heard;
    recent = [...recent.filter((each) => at - each.at < trendSpan && each.at <= at), { at, energy }];
    const domains = list(detail?.blockedDomains);
    const apps = list(detail?.blockedApps);
    showChips('domains', 'domain-count', domains);
    showChips('apps', 'app-count', apps);
    showVerdict();
}

// What the back end says of the day; null when it does not answer.
export function dayArrived(day) {
    known.day = day && { ...day, at: Date.now() };
    if (day)
        noteDay(day);
    showVerdict();
}

export function startHome() {
    on(names.status, statusArrived);
    showVerdict();
    // What is old must show as old although nothing arrives.
    setInterval(showVerdict, 1000);
}

export function setupHeard(service) {
    known.service = service;
    showVerdict();
}

export function removalHeard(state) {
    known.removal = state;
    showVerdict();
}
