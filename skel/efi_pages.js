// What the screen's pages have in common.

"use strict";

// Largest file that the board takes, in bytes.
const LARGEST_FILE = 393216;

// Returns why the board would refuse `file`: the text `none` without a file, else one of `refusals`
// (empty, large, name); an empty text when the board would take it.
function refusalOf(file, none, refusals) {
    if (!file) {
        return none;
    }
    if (file.size === 0) {
        return refusals.empty;
    }
    if (file.size > LARGEST_FILE) {
        return refusals.large;
    }
    return file.name.lastIndexOf(".dat") === file.name.length - 4 ? "" : refusals.name;
}

// From now on Refresh and Back show the function's first page. They never send a step again.
function forgetPost(functionNumber) {
    history.replaceState(null, "", `?functionID=${functionNumber}`);
}

// Says on a button what it does, or that its work is under way.
function labelButton(button, text, busy) {
    button.textContent = text;
    button.setAttribute("aria-disabled", String(busy));
}

// Shows an alert and brings the operator to the place where it can be mended.
function alertAt(element, text) {
    alert(text);
    element.focus();
}

// Shows an alert on the page itself, once.
function alertBelow(element, id, text) {
    if (!document.getElementById(id)) {
        const alert = document.createElement("p");
        alert.id = id;
        alert.className = "notice error";
        alert.setAttribute("role", "alert");
        alert.textContent = text;
        element.after(alert);
    }
}

// Keeps in the browser what a restore was asked to do, for the page that tells how it went.
function rememberPlan(plan) {
    sessionStorage.setItem("restorePlan", plan);
}

// Shows below the notice of a restore what it was asked to do, once.
function showPlan(heading) {
    const plan = sessionStorage.getItem("restorePlan");
    const notice = document.querySelector(".notice");
    sessionStorage.removeItem("restorePlan");
    if (plan && notice) {
        const text = document.createElement("p");
        text.className = "plan";
        text.textContent = `${heading}\n${plan}`;
        notice.append(text);
    }
}

// Tells this browser's other windows which staged file is the newest; "" for none.
function announceFile(file) {
    localStorage.setItem("stagedFile", file);
}

// Calls `tell` as soon as another window has staged another file than `file`, or discarded it.
function watchFile(file, tell) {
    const look = () => {
        if (localStorage.getItem("stagedFile") !== file) {
            tell();
        }
    };
    window.addEventListener("storage", look);
    window.addEventListener("pageshow", look);
}

// Starts the download of a backup. `path` contains the file's name as it is, which may itself contain
// "filename=", so it is made safe for a link here.
function startDownload(link, path) {
    const field = "filename=";
    const nameStart = path.indexOf(field) + field.length;
    const name = path.slice(nameStart);
    link.textContent = name;
    link.href = path.slice(0, nameStart) + encodeURIComponent(name);
    window.location.href = link.href;
}

// Runs the page's load function, and its preparations again when the browser shows the page from
// its memory.
function runWhenShown(load, prepare) {
    window.addEventListener("load", load);
    window.addEventListener("pageshow", (event) => {
        if (event.persisted) {
            prepare();
        }
    });
}
