// Functions that the screen's pages share.

"use strict";

// The size of the largest file that the board accepts, in bytes.
const LARGEST_FILE = @LARGEST_UPLOAD@;

// Returns the reason for which the board would refuse `file`: `none` if there is no file, or one of
// `refusals` (empty, large, name). Returns an empty string if the board would accept it.
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

// Makes Refresh and Back show the function's first page instead of posting a step again.
function forgetPost(functionNumber) {
    history.replaceState(null, "", `?functionID=${functionNumber}`);
}

// Sets a button's label, and marks the button as busy or not.
function labelButton(button, text, busy) {
    button.textContent = text;
    button.setAttribute("aria-disabled", String(busy));
}

// Shows an alert and moves the focus to the element that needs correction.
function alertAt(element, text) {
    alert(text);
    element.focus();
}

// Shows an alert on the page, below `element`. Does nothing if it is already there.
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

// The maximum length in characters of a file's text in a question or a result.
const LONGEST_OF_FILE = 80;

// Returns a foreign text as one line that cannot be mistaken for part of the question or result around
// it: white space is collapsed, and control and formatting characters are replaced by a visible one.
function inOneLine(text) {
    return text.replaceAll(/\s+/g, " ").trim().replaceAll(/[\p{Cc}\p{Cf}]/gu, "\ufffd");
}

// Returns a text of an uploaded file as one line, truncated to a readable length.
function shortLine(text) {
    const characters = [...inOneLine(text)];
    return characters.length > LONGEST_OF_FILE
        ? `${characters.slice(0, LONGEST_OF_FILE).join("")}…` : characters.join("");
}

// Returns `text` with #1, #2 and so on replaced by `values`.
function fill(text, ...values) {
    return text.replaceAll(/#(\d)/g, (mark, number) => values[number - 1]);
}

// Stores the name of the uploaded file for the next pages, because the board does not.
function rememberFileName(name) {
    sessionStorage.setItem("uploadedFile", name);
}

// Returns the name of the uploaded file; empty if it is not known.
function uploadedFileName() {
    return shortLine(sessionStorage.getItem("uploadedFile") ?? "");
}

// Stores the requested restore for the page that shows its outcome. `plan` is a list of captions, each
// with its values; null removes the stored one.
function rememberPlan(plan) {
    sessionStorage.setItem("restorePlan", JSON.stringify(plan));
}

// Lists the requested restore in the notice of its outcome, and removes the stored plan.
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

// Announces the current staged file, or "" for none, to this browser's other windows.
function announceFile(file) {
    localStorage.setItem("stagedFile", file);
}

// Calls `onChange` when another window has staged a file other than `file`, or discarded it.
function watchFile(file, onChange) {
    const check = () => {
        if (localStorage.getItem("stagedFile") !== file) {
            onChange();
        }
    };
    window.addEventListener("storage", check);
    window.addEventListener("pageshow", check);
}

// Starts the download of a backup. `path` contains the file name unencoded, so it is encoded here. The
// name may itself contain "filename=".
function startDownload(link, path) {
    const field = "filename=";
    const nameStart = path.indexOf(field) + field.length;
    const name = path.slice(nameStart);
    link.textContent = name;
    link.href = path.slice(0, nameStart) + encodeURIComponent(name);
    window.location.href = link.href;
}

// Runs `load` when the page is loaded, and `prepare` when the browser shows it again from its
// back/forward cache.
function runWhenShown(load, prepare) {
    window.addEventListener("load", load);
    window.addEventListener("pageshow", (event) => {
        if (event.persisted) {
            prepare();
        }
    });
}
