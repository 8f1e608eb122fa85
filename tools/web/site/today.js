// What the page has seen of the day: what changed, and the notices of the back end.

import { byId, coinsText, element, shortTime } from './text.js';

const mostListed = 8;

let last = null; // The status before.
let wasFresh = false;
let isSilenceTold = false;
const told = new Set(); // The notices that are listed already.

function tell(kind, title, text = '') {
    const item = element('li');
    item.dataset.kind = kind;
    const words = element('div', 'words');
    words.append(element('strong', '', title));
    if (text)
        words.append(element('span', 'quiet', text));
    item.append(words, element('time', '', shortTime(Date.now())));
    const list = byId('today');
    list.prepend(item);
    while (list.children.length > mostListed)
        list.lastElementChild.remove();
    byId('nothing-today').hidden = true;
}

// The marks that the balance has crossed since the status before.
function noteCoins(heard, low, high) {
    if (heard.energy <= 0 && last.energy > 0)
        return tell('coins', 'Coins used up');
    if (typeof low === 'number' && heard.energy <= low && last.energy > low)
        return tell('coins', 'Coins are low', `${coinsText(heard.energy)} left`);
    if (typeof high === 'number' && heard.energy >= high && last.energy < high)
        return tell('coins', 'Coins restored', `${coinsText(heard.energy)} to spend`);
    return undefined;
}

export function noteStatus(heard, day) {
    if (last) {
        noteCoins(heard, day?.low_lp_threshold, day?.high_lp_threshold);
        if (heard.blocking !== last.blocking)
            tell(heard.blocking ? 'blocking' : 'service', heard.blocking ? 'Blocking began' : 'Blocking ended');
    }
    last = heard;
}

export function noteSilence(isFresh, heard) {
    if (isFresh === wasFresh)
        return;
    wasFresh = isFresh;
    if (!isFresh)
        tell('trouble', 'The blocking service went silent', `last heard at ${shortTime(heard?.at ?? Date.now())}`);
    else if (isSilenceTold)
        tell('service', 'The blocking service answers again');
    isSilenceTold = !isFresh;
}

const reasons = { coins_depleted: 'no coins are left', daily_cap: 'today’s time is used up' };

const kinds = [
    ['pending_reminders', 'reminder', 'event_id', (notice) => [notice.notification_title ?? notice.title, notice.body]],
    ['pending_local_alerts', 'reminder', 'alert_id', (notice) => [notice.notification_title, notice.body]],
    ['pending_app_rejections', 'rejection', 'event_id',
        (notice) => [`“${notice.task_title ?? 'An app'}” was not opened`, reasons[notice.reason]]],
    ['pending_task_resumes', 'service', 'event_id', (notice) => [`Back to “${notice.task_title ?? 'your task'}”`]],
];

// Notices stay in what the back end says for a while; each is listed once.
export function noteDay(day) {
    for (const [key, kind, idKey, words] of kinds) {
        for (const notice of Array.isArray(day[key]) ? day[key] : []) {
            const id = `${key} ${notice?.[idKey]}`;
            if (!notice || told.has(id))
                continue;
            told.add(id);
            const [title, text] = words(notice);
            tell(kind, String(title ?? 'A notice'), typeof text === 'string' ? text : '');
        }
    }
}
