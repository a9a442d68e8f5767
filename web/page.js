// The page: its state is the files and the choices of the person, and everything that is shown follows from them.
import { emptyPlan, findConcerns, findHolder, makePlan, sourceRoles } from "./choices.js";
import { button, element, paragraph, radioGroup, select } from "./elements.js";
import {
  dataFileName,
  examine,
  hasSavegame,
  isEqual,
  pairOf,
  readFlags,
  readSavegame,
  takeOut,
  transfer,
} from "./media.js";
import { stashkeep } from "./program.js";
import { exampleFiles, filesOfDrop, filesOfInput, readBytes } from "./reading.js";
import { toText } from "./report.js";
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

let files = []; // what the person gave, each with an id, a title, a name for the program, and what `examine` says
const choices = {
  roles: new Map(), // of files by their ids
  byHand: new Set(), // the ids of those whose roles the person has changed
  from: undefined,
  into: undefined,
  shown: undefined, // the medium in the report
  accepted: "", // the concerns that the person has agreed to
  search: "",
};
const log = []; // every run of the program: what it was for, its arguments, exit status and output
const savegamesOfPairs = new Map(); // by the ids of both images
let purpose = ""; // what the program is running for
let plan = emptyPlan;
let made; // the result of a transfer
let flagReport; // that of the shown savegame, if all sources are there
let lastId = 0;

const byId = (id) => document.getElementById(id);

async function run(args, contents) {
  const outcome = await stashkeep(args, contents);
  const { exitStatus, output } = outcome;
  log.push({ purpose, args, exitStatus, output: toText(output) });
  return outcome;
}

// Files

/** A title or name that no other file has: with a number, if necessary. */
function uniqueText(text, withNumber, isTaken) {
  let unique = text;
  for (let number = 2; isTaken(unique); ++number) unique = withNumber(number);
  return unique;
}

function uniqueTitle(path) {
  const isTaken = (title) => files.some((file) => file.title === title);
  return uniqueText(path, (number) => `${path} (${number})`, isTaken);
}

/** The name under which the program gets a file. */
function uniqueName(path) {
  const name = path.split("/").pop();
  const isTaken = (candidate) => candidate === dataFileName || files.some((file) => file.name === candidate);
  return uniqueText(name, (number) => name.replace(/(\.[^.]*)?$/s, `-${number}$1`), isTaken);
}

async function examineSafely(file) {
  try {
    return await examine(run, file);
  } catch (error) {
    return { kind: "refused", problem: `The program could not look into this file. ${error.message}` };
  }
}

/** Adds a file, unless it is in the list already. It replaces a refused one, and one that has changed on the disk. */
async function addFile(given) {
  const { file, path } = given;
  showStatus(`Looking into ${path} …`);
  const sizeBefore = files.reduce((sum, { size, bytes }) => sum + (bytes ? size : 0), 0);
  const { bytes, problem } = await readBytes(given, sizeBefore);
  const id = String(++lastId);
  for (const other of files.filter((candidate) => candidate.path === path && candidate.bytes && bytes)) {
    const isOld = !(await isUnchanged(other));
    if (!isOld && !(await isEqual(other.bytes, bytes))) continue; // another file of this name
    if (!isOld && other.kind !== "refused") return;
    files = files.filter((remaining) => remaining !== other);
    if (plan.roles.has(other.id)) choices.roles.set(id, plan.roles.get(other.id));
  }
  const added = { id, file, path, title: uniqueTitle(path), name: uniqueName(path), size: file.size, bytes };
  files.push({ ...added, ...(problem ? { kind: "refused", problem } : await examineSafely(added)) });
}

/** Whether a file is on the disk as it was when it was added: an emulator may write into it when it ends. */
async function isUnchanged({ file, bytes }) {
  const now = await readBytes({ file }, 0);
  return now.bytes !== undefined && (await isEqual(now.bytes, bytes));
}

async function requireUnchanged(file) {
  if (await isUnchanged(file)) return;
  throw new Error(`${file.title} has changed since you added it. Close the emulator, and add the file again.`);
}

async function readPair(disc2, disc3) {
  const key = `${disc2.id} ${disc3.id}`;
  if (!savegamesOfPairs.has(key)) {
    savegamesOfPairs.set(key, await readSavegame(run, pairOf(disc2.image, disc3.image)));
  }
  return savegamesOfPairs.get(key);
}

// The report

function shownMedium() {
  return plan.media.find(({ key }) => key === choices.shown) ?? plan.from ?? plan.media[0];
}

/** The path at which the program looks for an included file. */
function includedPath({ path }) {
  const inGenerated = path.split("generated/").slice(1).pop();
  return `generated/${inGenerated ?? path.split("/").pop()}`;
}

/** The main sources in the order of the command, some of which may be missing, and the contents of all by their paths. */
function findSources() {
  const withRole = (role) => files.filter(({ id }) => plan.roles.get(id) === role);
  const main = sourceRoles.slice(0, 3).map((role) => withRole(role)[0]);
  const empty = files.filter(({ kind, size }) => kind === "refused" && size === 0); // a source may be empty
  const included = [...withRole("included"), ...empty].reverse(); // so that the first of a name counts
  const contents = included.map((file) => [includedPath(file), file.bytes ?? new Uint8Array()]);
  for (const file of main.filter(Boolean)) contents.push([file.name, file.bytes]);
  return { main, contents: Object.fromEntries(contents) };
}

/** Reads the flags of the shown savegame, if that or the sources have changed. */
async function updateFlagReport() {
  const shown = shownMedium();
  const { main, contents } = findSources();
  const key = [shown?.key, ...files.map(({ id }) => `${id} ${plan.roles.get(id)}`)].join();
  if (flagReport?.key === key) return;
  flagReport = { key, given: main.filter(Boolean).length, absent: sourceRoles.slice(0, 3).filter((_, i) => !main[i]) };
  if (!shown || flagReport.absent.length > 0) return;
  showStatus("Reading the flags …");
  const names = main.map(({ name }) => name);
  try {
    Object.assign(flagReport, await readFlags(run, shown.savegame.data, names, contents));
  } catch (error) {
    flagReport.output = error.message;
  }
}

// What happens

let work = Promise.resolve();

function showStatus(text) {
  purpose = text;
  byId("status").textContent = text;
}

function showFailure(where, text) {
  byId(where).replaceChildren(element("div", { role: "alert", className: "warning" }, text));
}

/** Whether two options of different plans are the same files. */
function isSameOption(option, other) {
  const idsOf = ({ key, files: all = [] }) => [key === "data", ...all.map(({ id }) => id)].join();
  return option !== undefined && other !== undefined && idsOf(option) === idsOf(other);
}

/** Finds out anew what can be done. What was made stays only as long as it belongs to what is chosen. */
async function updatePlan() {
  showStatus("Looking into the savegames …");
  plan = await makePlan(files, choices, readPair).catch((error) => {
    showFailure("failure", `The program could not look into the savegames. ${error.message}`);
    return emptyPlan;
  });
  if (made && !(isSameOption(made.from, plan.from) && isSameOption(made.into, plan.into))) made = undefined;
  await updateFlagReport();
}

/** Does something, and shows what goes wrong. */
async function attempt(action) {
  try {
    return await action();
  } catch (error) {
    showFailure("failure", `That did not work. ${error.message}`);
    return undefined;
  }
}

/** Does one thing after the other. A change may return what to say when it is done. */
function enqueue(change) {
  work = work.then(async () => {
    byId("app").setAttribute("aria-busy", "true");
    showStatus("Working …");
    byId("failure").replaceChildren();
    byId("make-failure")?.replaceChildren();
    const madeBefore = made;
    const done = await attempt(change);
    await attempt(updatePlan);
    render();
    showStatus(done ?? "");
    byId("app").removeAttribute("aria-busy");
    if (made && made !== madeBefore) byId("result-heading").focus();
  });
}

function addFiles(finding) {
  enqueue(async () => {
    const found = await finding;
    const idBefore = lastId;
    for (const given of found.files) await addFile(given);
    if (found.leftOut > 0) {
      showFailure(
        "failure",
        `There are too many files in this folder: ${found.leftOut} of them were left out. Add single files instead.`,
      );
    }
    if (found.files.length === 0) return "There are no files in it.";
    const count = files.filter(({ id }) => Number(id) > idBefore).length;
    if (count === 0) return "These files are in the list already.";
    return count === 1 ? "One file added." : `${count} files added.`;
  });
}

function removeFiles(isRemoved) {
  enqueue(() => {
    files = files.filter((file) => !isRemoved(file));
    return "Removed.";
  });
}

function removeAllFiles() {
  removeFiles(() => true);
  Object.assign(choices, { from: undefined, into: undefined, shown: undefined, accepted: "" });
}

/** Gives a file a role; the file that has it gets the role of the first one. */
function giveRole({ id }, role) {
  enqueue(() => {
    const holder = findHolder(plan.roles, role);
    choices.roles = new Map(plan.roles).set(holder ?? id, plan.roles.get(id)).set(id, role);
    for (const changed of [id, holder]) choices.byHand.add(changed);
    return "The roles have changed.";
  });
}

/** Makes what the plan says that was shown when the button was pressed. */
function makeFiles({ from, into }, concerns) {
  const shownPlan = plan;
  enqueue(async () => {
    if (plan !== shownPlan) return "That has changed meanwhile: please look again.";
    made = undefined;
    showStatus("Making the new files, and comparing them …");
    try {
      for (const file of [...from.files, ...(into.files ?? [])]) await requireUnchanged(file);
      const isDataFile = into.key === "data";
      const newFiles = isDataFile ? await takeOut(run, from.medium) : await transfer(run, from.medium, into.medium);
      made = { files: newFiles, from, into, concerns };
    } catch (error) {
      showFailure("make-failure", `That did not work, and nothing was made. ${error.message}`);
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
  showStatus(`${name} goes to the downloads of your browser.`);
}

// What is shown

function renderFiles() {
  const actions = {
    onrole: giveRole,
    onremove: ({ id }) => removeFiles((file) => file.id === id),
    onremoveall: removeAllFiles,
  };
  const swap = (disc2, disc3) => giveRole(disc3, plan.roles.get(disc2.id));
  byId("examples-button").hidden = files.length > 0; // they would mix with one's own files
  byId("file-list").replaceChildren(...fileList(files, plan, actions));
  byId("discs").replaceChildren(...discNotes(files, plan, swap));
}

function concernBox({ savegame }, concerns) {
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
function makeParts({ from, into }) {
  const concerns = findConcerns({ from, into });
  const text =
    into.key === "data"
      ? `Make a savegame data file of ${from.title}`
      : `Put the savegame into a copy of ${into.title}`;
  const isReady = concerns.length === 0 || choices.accepted === String(concerns);
  const onclick = () => makeFiles({ from, into }, concerns);
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
    ...(flags ? flagTables(flags, choices.search, (text) => (choices.search = text)) : []),
  ];
}

function renderReport() {
  const shown = shownMedium();
  byId("look").hidden = !shown;
  if (!shown) return;
  const options = plan.media.map(({ key, title }) => [key, title]);
  const show = (key) => enqueue(() => void (choices.shown = key));
  const list = select("shown", "Savegame in", options, shown.key, show);
  byId("report").replaceChildren(list, ...savegameReport(shown.savegame), ...flagParts(flagReport));
}

/** A command line as one types it, with quotes around names that need them. */
function commandLine(args) {
  return ["stashkeep", ...args].map((word) => (/^[\w./-]+$/.test(word) ? word : `"${word}"`)).join(" ");
}

function renderLog() {
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
  byId("needs").remove();
  byId("app").hidden = false;
  byId("folder-input").parentElement.hidden = !("webkitdirectory" in byId("folder-input"));
  for (const id of ["files-input", "folder-input"]) {
    byId(id).onchange = ({ target }) => {
      addFiles(filesOfInput(target));
      target.value = ""; // so that the same file can be chosen again
    };
  }
  byId("examples-button").onclick = () => addFiles(exampleFiles());
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
    if (event.dataTransfer.types.includes("Files")) addFiles(filesOfDrop(event.dataTransfer));
  });
}

globalThis.stashkeep = stashkeep;
if (typeof WebAssembly === "object" && typeof DecompressionStream === "function") start();
