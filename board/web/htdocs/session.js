// Shows a logged-in user how long the session will last, warns before it ends, and lets the user
// extend it.

"use strict";

{
const SECOND = 1000;
const MINUTE = 60 * SECOND;
const WARNING = MINUTE;

// The key in local storage under which the browser's pages share the end of the session. Each
// request extends the session, so the newest page is right.
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
        // Without storage, each page relies on its own value.
    }
}

// Shows one of the page's texts, or none. Screen readers announce each change of the notice, so it
// changes only here.
function say(text) {
    stage = text;
    const found = text && texts.querySelector(`[data-case=${text}]`);
    notice.replaceChildren(...(found ? [document.importNode(found, true)] : []));
    notice.querySelector("button")?.addEventListener("click", stay);
    // After the login, the browser returns to this screen.
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
        // A session cannot be extended beyond its maximum life.
        say(lifeEnds - ends < SECOND ? "last" : "ending");
    }
}

// Extends the session without leaving the page, by loading a picture, which the page's policy
// permits. Each has its own address, because a page loads the same address only once.
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
