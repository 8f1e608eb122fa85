// Updates, and leaving.

import { byId, setText, shortTime } from './text.js';
import { names, on, post } from './bridge.js';
import { removalHeard } from './home.js';

function updaterArrived(detail) {
    const version = detail?.version ? `Version ${detail.version}. ` : '';
    const isAvailable = detail?.available === true;
    setText('updater-text', version + (isAvailable ? '' : 'This build does not update itself.'));
    byId('updater-controls').hidden = !isAvailable;
    byId('automatic-checks').checked = detail?.automaticChecks === true;
}

const queueErrors = {
    no_credential: 'Sign in first: the blocking service wants to know who asks.',
    credential_invalid: 'Sign in again first: the blocking service no longer knows you.',
    account_mismatch: 'The blocking service belongs to another account.',
};

const lapse = (expiresAt) => typeof expiresAt === 'number'
    ? ` If nothing comes of it, the request lapses at ${shortTime(expiresAt * 1000)}.`
    : '';

// The title and the text of each step of a removal; both are functions of the state.
const removals = {
    pending: ['The blocking service will be removed', ({ expiresAt }) => `You can still keep it.${lapse(expiresAt)}`],
    committed: ['The blocking service is about to be removed', () => 'It can no longer be kept.'],
    finishing: ['The blocking service is being removed',
        ({ blockingOff }) => blockingOff ? 'Nothing is blocked any more.' : 'This takes about a minute.'],
    removed: ['The blocking service has been removed',
        () => 'Nothing is blocked on this Mac. You may install it again at any time.'],
};

function removalArrived(detail) {
    const state = typeof detail?.state === 'string' ? detail.state : 'unavailable';
    const words = Object.hasOwn(removals, state) ? removals[state] : null;
    byId('action-id').value = String(detail?.actionId ?? '');
    const mayRemoveFilter = state === 'removed' && detail.filterRemovable === true;
    byId('removal-note').hidden = !words;
    byId('removal-note').dataset.state = state;
    byId('keep-service').hidden = state !== 'pending';
    byId('remove-filter').hidden = !mayRemoveFilter;
    setText('removal-title', words ? words[0] : '');
    setText('removal-text', words ? words[1](detail) : '');
    byId('leave').disabled = state !== 'none';
    const error = detail?.queueError;
    setText('leave-text', error
        ? `It could not be asked for. ${Object.hasOwn(queueErrors, error) ? queueErrors[error] : error}`
        : 'Removes the blocking service from this Mac, so that nothing is blocked here any more. The app stays.');
    if (state !== 'none')
        askWhetherToLeave(false);
    removalHeard(state);
}

function askWhetherToLeave(isAsking) {
    byId('leave').hidden = isAsking;
    byId('leave-question').hidden = !isAsking;
}

export function startSettings() {
    on(names.updater, updaterArrived);
    on(names.removal, removalArrived);
    byId('automatic-checks').addEventListener('change', (event) => {
        post({ type: event.target.checked ? 'set_updater_auto_checks_on' : 'set_updater_auto_checks_off' });
    });
    byId('leave').addEventListener('click', () => {
        askWhetherToLeave(true);
        byId('stay').focus();
    });
    byId('stay').addEventListener('click', () => {
        askWhetherToLeave(false);
        byId('leave').focus();
    });
}
