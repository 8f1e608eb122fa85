// What the page says of the blocking, as a function of what it has heard and of now. Changes nothing.

import { coinsText, duration, shortTime } from './text.js';

// A status comes every two seconds. One that is older than this no longer says how things are.
export const believedFor = 6000;

export const isFresh = (heard, now) => Boolean(heard) && now - heard.at < believedFor && now >= heard.at - believedFor;

// Why the service is silent, as far as the client knows.
const silence = {
    notInstalled: 'The blocking service is not installed, so nothing can be blocked. Install it to begin.',
    notRunning: 'The blocking service is installed, but it is not running.',
    turnedOffInSettings: 'The blocking service is turned off in System Settings.',
    installing: 'The blocking service is being installed.',
    starting: 'The blocking service is starting.',
    unreachable: 'The blocking service does not answer.',
};

const words = {
    notInstalled: 'Not installed',
    installing: 'Installing',
    notRunning: 'Not running',
    starting: 'Starting',
    turnedOffInSettings: 'Turned off',
};

const reasons = {
    coins_depleted: 'your coins are used up',
    daily_cap: 'today’s time is used up',
    situation: 'a situation of yours asks for it',
};

function blockingSentence(status, day) {
    if (!status.blocking)
        return 'Nothing is blocked. Enjoy it, or put coins aside for later.';
    const reason = day?.block_reason;
    if (typeof reason === 'string' && reason)
        return `Blocking now because ${Object.hasOwn(reasons, reason) ? reasons[reason] : `of “${reason}”`}.`;
    return status.energy > 0 ? 'Your rules hold right now.' : 'Blocking now, and no coins are left.';
}

const lookUp = (table, word) => typeof word === 'string' && Object.hasOwn(table, word) ? table[word] : undefined;

const old = (pill, sentence, asOf = '') => ({ state: 'old', pill, sentence, asOf });

// `heard`: the last status with `at`, when it came; null for none. `service`: the word for the service in the state of
// the set-up, or "installing". `openedAt`: when the page began to listen.
export function verdict({ heard, day, service, removal, openedAt }, now) {
    if (isFresh(heard, now)) {
        return {
            state: heard.blocking ? 'blocking' : 'open',
            pill: heard.blocking ? 'Blocking' : 'Not blocking',
            sentence: blockingSentence(heard, isFresh(day, now) ? day : null),
            asOf: '',
        };
    }
    if (removal === 'removed')
        return old('Removed', 'The blocking service has been removed. Nothing is blocked on this Mac.');
    const since = heard?.at ?? openedAt;
    const isKnownAway = ['notInstalled', 'installing', 'turnedOffInSettings'].includes(service);
    if (!heard && now - openedAt < believedFor && !isKnownAway) {
        const sentence = 'Asking the blocking service how things are.';
        return { state: 'unknown', pill: 'Looking around', sentence, asOf: '' };
    }
    const why = lookUp(silence, service) ?? 'The blocking service does not answer.';
    const pill = lookUp(words, service) ?? 'No answer';
    if (!heard)
        return old(pill, why, isKnownAway ? '' : `nothing heard for ${duration(now - since)}`);
    const blocking = heard.blocking ? 'it was blocking' : 'nothing was blocked';
    const last = `At ${shortTime(since)} there were ${coinsText(heard.energy)} coins and ${blocking}.`;
    return old(pill, `${why} ${last}`, `as of ${duration(now - since)} ago`);
}
