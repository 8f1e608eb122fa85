// The console leads to the browser's standard error. Each thing told is one array on one line.
function tell(what, value)
{
    console.log("told " + JSON.stringify([what, value]));
}

function connect()
{
    const port = chrome.runtime.connectNative("com.brevanta.native_messaging");
    let isAnswered = false;
    port.onMessage.addListener((message) => {
        isAnswered = true;
        tell("message", message);
    });
    port.onDisconnect.addListener(() => {
        tell("disconnected", chrome.runtime.lastError?.message ?? null);
        // Never again and again where nobody answers.
        if (isAnswered)
            connect();
    });
    port.postMessage({ question: "What is blocked?" });
}

connect();
