// Evaluates what the server is told to have evaluated; see PageDriver.h.
'use strict';

const brevantaDriver = (() => {
    const pauseAfterFailure = 500;
    // Tells this document from the one before it, which may still be asking.
    const thisDocument = Math.random().toString(36).slice(2);

    async function post(path, report) {
        // It is to arrive even when the page is being left.
        await fetch(path, {
            method: 'POST',
            keepalive: true,
            headers: { 'Content-Type': 'application/json' },
            body: JSON.stringify(report),
        });
    }

    function report(number, outcome) {
        return post('/driver/result', { number, ...outcome });
    }

    async function run(number, expression) {
        let outcome;
        try {
            const json = JSON.stringify(await expression());
            outcome = { json: json === undefined ? 'null' : json };
        } catch (error) {
            outcome = { error: String(error) };
        }
        await report(number, outcome).catch(() => {});
    }

    // Resolves once the script has run, or could not be had because another page has fetched it.
    function load(number) {
        return new Promise((resolve) => {
            const script = document.createElement('script');
            script.src = `/driver/script/${number}/${thisDocument}`;
            const noteError = (event) => {
                // An expression that cannot be parsed.
                if (event.filename === script.src)
                    report(number, { error: event.message }).catch(() => {});
            };
            const finish = () => {
                window.removeEventListener('error', noteError);
                script.remove();
                resolve();
            };
            window.addEventListener('error', noteError);
            script.addEventListener('load', finish);
            script.addEventListener('error', finish);
            document.head.append(script);
        });
    }

    async function work() {
        for (;;) {
            try {
                const answer = await fetch('/driver/next', { cache: 'no-store' });
                if (answer.status === 200)
                    await load((await answer.json()).number);
                else if (answer.status !== 204)
                    throw new Error(answer.statusText);
            } catch {
                await new Promise((resolve) => setTimeout(resolve, pauseAfterFailure));
            }
        }
    }

    // What it fetched and has not answered by now is never answered.
    window.addEventListener('pagehide', () => post('/driver/left', { document: thisDocument }).catch(() => {}));

    // The page's own load is over first, so that nothing of this counts as a part of it.
    if (document.readyState === 'complete')
        work();
    else
        window.addEventListener('load', () => setTimeout(work, 0));

    return Object.freeze({ run });
})();
