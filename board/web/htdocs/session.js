// Shows on the pages of a logged-in user how long the session still lives, warns before it ends,
// and lets the user stay.

"use strict";

{
const SECOND = 1000;
const MINUTE = 60 * SECOND;
const WARNING = MINUTE;

// Where the pages of this browser tell each other when the session ends: each request is a use of
// it, and the newest page knows best.
const ENDS = "sessionEnds";

const line = document.getElementById("session");
const notice = document.getElementById("session_notice");
const texts = document.getElementById("session_texts").content;
const idle = Number(line.dataset.idle) * SECOND;
const lifeEnds = Date.now() + Number(line.dataset.life) * SECOND;
let ends = Date.now() + Number(line.dataset.left) * SECOND;
let stage = "";

function remember() {
    try {
        localStorage.setItem(ENDS, String(ends));
    } catch {
        // Without storage, each page goes by what it knows itself.
    }
}

// Shows one of the texts of the page, or none. The notice is announced when it changes, so it
// changes only here.
function say(text) {
    stage = text;
    const found = text && texts.querySelector(`[data-case=${text}]`);
    notice.replaceChildren(...(found ? [document.importNode(found, true)] : []));
    notice.querySelector("button")?.addEventListener("click", stay);
    // A login leads back to the screen that is shown.
    const link = notice.querySelector("a");
    if (link && /^\?functionID=\d+$/.test(location.search)) {
        link.search = location.search;
    }
}

function show() {
    const left = Math.max(ends - Date.now(), 0);
    const lastMinute = left > 0 && left < MINUTE;
    line.querySelector("span").textContent = lastMinute ? "< 1" : Math.floor(left / MINUTE);
    const time = line.querySelector("time");
    time.dateTime = new Date(ends).toISOString();
    time.textContent = new Date(ends).toLocaleTimeString(document.documentElement.lang,
        { hour: "2-digit", minute: "2-digit", hourCycle: "h23" });
    if (left === 0) {
        if (stage !== "ended") {
            say("ended");
        }
    } else if (left > WARNING) {
        if (stage !== "" && stage !== "stayed") {
            say("");
        }
    } else if (stage === "" || stage === "stayed") {
        // Nothing prolongs a session beyond its life.
        say(lifeEnds - ends < SECOND ? "last" : "ending");
    }
}

// Uses the session without leaving the page. A picture is what the page's policy lets a script
// ask for; each has an address of its own, because a page asks only once for the same.
function stay() {
    const use = new Image();
    use.addEventListener("load", () => {
        ends = Math.min(Date.now() + idle, lifeEnds);
        remember();
        say("stayed");
        show();
        line.tabIndex = -1;
        line.focus();
    });
    use.addEventListener("error", () => {
        say("failed");
        notice.querySelector("button").focus();
    });
    use.src = `/stay.cgi?use=${Date.now()}`;
}

window.addEventListener("storage", (event) => {
    if (event.key === ENDS && Number(event.newValue) > 0) {
        ends = Number(event.newValue);
        show();
    }
});

window.addEventListener("pageshow", (event) => {
    if (event.persisted) {
        ends = Number(localStorage.getItem(ENDS)) || ends;
        show();
    }
});

remember();
show();
setInterval(show, SECOND);
}
