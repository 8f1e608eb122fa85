// Asks the back end every two seconds, as the client asks the blocking service. This script is a part of the page only
// where there is a back end.

import { dayArrived } from './home.js';

const interval = 2000;

async function askBackEnd() {
    try {
        const answer = await fetch('/day', { cache: 'no-store' });
        dayArrived(answer.ok ? await answer.json() : null);
    } catch {
        dayArrived(null);
    }
    setTimeout(askBackEnd, interval);
}

askBackEnd();
