// The page: what is shown of the session, and what happens when the person does something.
import { findConcerns } from "./choices.js";
import { button, element, paragraph, radioGroup, select } from "./elements.js";
import { hasSavegame } from "./media.js";
import { stashkeep } from "./program/stashkeep.js";
import { exampleFiles, filesOfDrop, filesOfInput } from "./files/reading.js";
import {
  addFiles,
  giveRole,
  makeFiles,
  removeAllFiles,
  removeFile,
  session,
  setPurpose,
  shownMedium,
  updatePlan,
} from "./session.js";
import {
  comparison,
  discNotes,
  fileList,
  flagTables,
  programOutput,
  savegameReport,
  stateOutput,
  transferResult,
} from "./views.js";

const byId = (id) => document.getElementById(id);

// What happens

let work = Promise.resolve();

/** Does something, and says what goes wrong. */
async function attempt(action) {
  try {
    return await action();
  } catch (error) {
    session.failure = `That did not work. ${error.message}`;
    return undefined;
  }
}

/** Does one thing after the other. A change may return what to say when it is done. */
function enqueue(change) {
  work = work.then(async () => {
    byId("app").setAttribute("aria-busy", "true");
    setPurpose("Working …");
    session.failure = "";
    byId("make-failure")?.replaceChildren();
    const madeBefore = session.made;
    const done = await attempt(change);
    await attempt(updatePlan);
    render();
    setPurpose(done ?? "");
    byId("app").removeAttribute("aria-busy");
    if (session.made && session.made !== madeBefore) byId("result-heading").focus();
  });
}

function changeRole(file, role) {
  enqueue(() => {
    giveRole(file, role);
    return "The roles have changed.";
  });
}

function failureBox(text) {
  return element("div", { role: "alert", className: "warning" }, text);
}

/** Makes what the plan says that was shown when the button was pressed. */
function make(shownPlan, concerns) {
  enqueue(async () => {
    if (session.plan !== shownPlan) return "That has changed meanwhile: please look again.";
    try {
      await makeFiles(shownPlan, concerns);
    } catch (error) {
      byId("make-failure").replaceChildren(failureBox(`That did not work, and nothing was made. ${error.message}`));
      return "Nothing was made.";
    }
    return "Compared and ready to be saved.";
  });
}

function saveFile(file) {
  const { name, bytes } = file;
  const url = URL.createObjectURL(new Blob([bytes]));
  // eslint-disable-next-line no-restricted-syntax -- a link to the page's own bytes, which the browser saves
  element("a", { href: url, download: name }).click();
  setTimeout(() => URL.revokeObjectURL(url), 60_000);
  file.isSaved = true;
  render();
  setPurpose(`${name} goes to the downloads of your browser.`);
}

// What is shown

function renderFiles() {
  const { files, plan, failure } = session;
  byId("failure").replaceChildren(...(failure ? [failureBox(failure)] : []));
  const actions = {
    onrole: changeRole,
    onremove: (file) => enqueue(() => removeFile(file)),
    onremoveall: () => enqueue(removeAllFiles),
  };
  const swap = (disc2, disc3) => changeRole(disc3, plan.roles.get(disc2.id));
  byId("examples-button").hidden = files.length > 0; // they would mix with one's own files
  byId("file-list").replaceChildren(...fileList(files, plan, actions));
  byId("discs").replaceChildren(...discNotes(files, plan, swap));
}

function concernBox({ savegame }, concerns) {
  const { choices } = session;
  const onchange = ({ target }) => {
    choices.accepted = target.checked ? String(concerns) : "";
    byId("make-button").disabled = !target.checked;
  };
  const checked = choices.accepted === String(concerns);
  const checkbox = element("input", { type: "checkbox", id: "accept", checked, onchange });
  return element(
    "div",
    { className: "warning" },
    concerns.map((concern) => paragraph(concern)),
    savegame.discs.some(({ state }) => state !== "good") ? stateOutput(savegame) : "",
    element("label", { className: "option" }, checkbox, element("span", {}, "Move it all the same")),
  );
}

/** The last step: what is replaced, what to agree to, and the button. */
function makeParts(plan) {
  const { from, into } = plan;
  const concerns = findConcerns({ from, into });
  const text =
    into.key === "data"
      ? `Make a savegame data file of ${from.title}`
      : `Put the savegame into a copy of ${into.title}`;
  const isReady = concerns.length === 0 || session.choices.accepted === String(concerns);
  const onclick = () => make(plan, concerns);
  return [
    into.savegame && hasSavegame(into.savegame) ? comparison(from, into) : "",
    concerns.length > 0 ? concernBox(from, concerns) : "",
    element(
      "p",
      { className: "buttons" },
      button("make-button", text, onclick, { className: "main", disabled: !isReady }),
    ),
    element("div", { id: "make-failure" }),
  ];
}

function renderMove() {
  const { choices, plan, made } = session;
  const { fromOptions, intoOptions, from, into } = plan;
  const isPossible = ({ refusal }) => refusal === undefined;
  const choose = (which) => (key) => enqueue(() => void (choices[which] = key));
  byId("move").hidden = fromOptions.length === 0;
  const parts = [radioGroup("from", "From: which savegame?", fromOptions, from?.key, choose("from"))];
  if (!fromOptions.some(isPossible)) {
    parts.push(paragraph("To move a savegame, add the images or the data file that hold it.", "warning"));
    parts.push(...fromOptions.map(({ savegame }) => stateOutput(savegame)));
  } else if (!from) {
    parts.push(paragraph("Choose which savegame it is."));
  } else if (intoOptions.length === 0) {
    parts.push(paragraph("Add the image that the savegame shall go into."));
  } else {
    parts.push(radioGroup("into", "Into: where shall it go?", intoOptions, into?.key, choose("into")));
    parts.push(...(into ? makeParts(plan) : [paragraph("Choose where it shall go.")]));
  }
  const failure = byId("make-failure")?.firstChild;
  byId("move-choices").replaceChildren(...parts);
  if (failure) byId("make-failure")?.append(failure);
  byId("result").replaceChildren(...(made ? [transferResult(made, saveFile)] : []));
}

function flagParts({ flags, given, absent, missing = [], output }) {
  const problems = [];
  const damaged = shownMedium().savegame.discs.flatMap(({ damagedPages }, i) =>
    damagedPages.includes(0) ? i + 2 : [],
  );
  const hasFailed = output !== undefined && !flags;
  if (flags) problems.push(...damaged.map((disc) => `The flags of disc ${disc} are damaged: they may be wrong.`));
  if (given > 0 && absent.length > 0) problems.push(`For the flags, these sources are missing: ${absent.join(", ")}.`);
  if (missing.length > 0)
    problems.push(`Looked for and not found: ${missing.join(", ")}. Add the whole folder generated.`);
  if (hasFailed) problems.push("The flags could not be read from these sources.");
  if (flags?.game.length === 0) problems.push("No game flags were found: is the right file used as scr_flags.asm?");
  if (flags?.world.length === 0) {
    problems.push("No world flags were found: is the right file used as scr_globaldefines.asm?");
  }
  const hint = `To see every flag of the game by its name, also add the game’s sources: ${absent.join(", ")}, and the folder generated.`;
  return [
    ...problems.map((text) => paragraph(text, "warning")),
    given === 0 ? paragraph(hint) : "",
    hasFailed ? programOutput(output) : "",
    ...(flags ? flagTables(flags, session.choices.search, (text) => (session.choices.search = text)) : []),
  ];
}

function renderReport() {
  const shown = shownMedium();
  byId("look").hidden = !shown;
  if (!shown) return;
  const options = session.plan.media.map(({ key, title }) => [key, title]);
  const show = (key) => enqueue(() => void (session.choices.shown = key));
  const list = select("shown", "Savegame in", options, shown.key, show);
  byId("report").replaceChildren(list, ...savegameReport(shown.savegame), ...flagParts(session.flagReport));
}

/** A command line as one types it, with quotes around names that need them. */
function commandLine(args) {
  return ["stashkeep", ...args].map((word) => (/^[\w./-]+$/.test(word) ? word : `"${word}"`)).join(" ");
}

function renderLog() {
  const { log } = session;
  byId("log").hidden = log.length === 0;
  if (!byId("log-details").open) return;
  const entries = log.flatMap((entry, i) => [
    entry.purpose === log[i - 1]?.purpose ? "" : element("h3", {}, entry.purpose),
    element("pre", {}, `$ ${commandLine(entry.args)}\n${entry.output}\n(exit status ${entry.exitStatus})`),
  ]);
  byId("log-entries").replaceChildren(...entries);
}

function render() {
  const focused = document.activeElement?.id;
  const opened = [...document.querySelectorAll("details[id][open]")].map(({ id }) => id);
  renderFiles();
  renderMove();
  renderReport();
  renderLog();
  for (const id of opened) byId(id)?.setAttribute("open", "");
  byId(focused)?.focus();
  if (focused && document.activeElement?.id !== focused) byId("files-heading").focus();
}

function start() {
  const add = (finding) => enqueue(async () => addFiles(await finding));
  session.onPurpose = (text) => (byId("status").textContent = text);
  byId("needs").remove();
  byId("app").hidden = false;
  byId("folder-input").parentElement.hidden = !("webkitdirectory" in byId("folder-input"));
  for (const id of ["files-input", "folder-input"]) {
    byId(id).onchange = ({ target }) => {
      add(filesOfInput(target));
      target.value = ""; // so that the same file can be chosen again
    };
  }
  byId("examples-button").onclick = () => add(exampleFiles());
  byId("log-details").ontoggle = renderLog;
  addEventListener("dragover", (event) => {
    event.preventDefault();
    document.body.classList.add("dragging");
  });
  addEventListener("dragleave", ({ relatedTarget }) => {
    if (!relatedTarget) document.body.classList.remove("dragging");
  });
  addEventListener("drop", (event) => {
    event.preventDefault();
    document.body.classList.remove("dragging");
    if (event.dataTransfer.types.includes("Files")) add(filesOfDrop(event.dataTransfer));
  });
}

globalThis.stashkeep = stashkeep;
if (typeof WebAssembly === "object" && typeof DecompressionStream === "function") start();
