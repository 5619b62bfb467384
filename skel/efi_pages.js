// What the screen's pages have in common.

"use strict";

// The size of the largest file that the board accepts, in bytes.
const LARGEST_FILE = @LARGEST_UPLOAD@;

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

// The longest text of a file that a question or a result shows, in characters.
const LONGEST_OF_FILE = 80;

// Returns a text that the program did not make, in one line, so that it cannot look like a part of the
// question or the result around it: white space is folded, and characters that control, turn or hide
// what surrounds them become visible ones.
function inOneLine(text) {
    return text.replaceAll(/\s+/g, " ").trim().replaceAll(/[\p{Cc}\p{Cf}]/gu, "\ufffd");
}

// Returns a text of an uploaded file in one line of a readable length.
function shortLine(text) {
    const characters = [...inOneLine(text)];
    return characters.length > LONGEST_OF_FILE
        ? `${characters.slice(0, LONGEST_OF_FILE).join("")}…` : characters.join("");
}

// Returns `text` with `values` in place of #1, #2 and so on.
function fill(text, ...values) {
    return text.replaceAll(/#(\d)/g, (mark, number) => values[number - 1]);
}

// Keeps the name of the uploaded file for the pages that follow; the board does not.
function rememberFileName(name) {
    sessionStorage.setItem("uploadedFile", name);
}

// Returns the name of the uploaded file; empty if it is not known.
function uploadedFileName() {
    return shortLine(sessionStorage.getItem("uploadedFile") ?? "");
}

// Keeps what a restore was asked to do for the page that shows its outcome. `plan` is a list of
// captions, each with its values; null forgets it.
function rememberPlan(plan) {
    sessionStorage.setItem("restorePlan", JSON.stringify(plan));
}

// Lists below the notice of a restore what it was asked to do, once.
function showPlan(heading) {
    const plan = JSON.parse(sessionStorage.getItem("restorePlan"));
    const notice = document.querySelector(".notice");
    sessionStorage.removeItem("restorePlan");
    if (!plan || !notice) {
        return;
    }
    const add = (parent, kind, text) => {
        const element = document.createElement(kind);
        element.textContent = text;
        parent.append(element);
        return element;
    };
    add(notice, "p", heading).className = "plan-heading";
    const list = add(notice, "dl", "");
    list.className = "plan";
    for (const [caption, ...values] of plan) {
        add(list, "dt", caption);
        values.forEach((value) => add(list, "dd", value));
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
