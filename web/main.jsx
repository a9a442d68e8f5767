// The shell around the core: what happens in the browser becomes actions, and what the state asks for is done here.
import { render } from "preact";
import { exampleFiles, filesOfDrop, filesOfInput, readBytes } from "./files/reading.js";
import { outputLimit } from "./model/log.js";
import { dataFileName, toProgramName, toTitle, uniqueText } from "./model/names.js";
import { hasUnsaved } from "./model/result.js";
import { toText } from "./model/report.js";
import { emptyState, update } from "./model/update.js";
import { examine, floppySize } from "./program/examine.js";
import { readFlags } from "./program/flags.js";
import { stashkeep, stopRun } from "./program/stashkeep.js";
import { extract, isEqual, takeOut, transfer } from "./program/transfer.js";
import { App } from "./views/App.jsx";
import { countOf, goTo } from "./views/parts.jsx";

/** @import { Contents, FileFacts, Job, Medium, State } from "./model/types.js" */
/** @import { Action } from "./model/update.js" */
/** @import { Given } from "./files/reading.js" */
/** @import { Images, Run } from "./program/transfer.js" */

/** @template {Job["kind"]} Kind @typedef {Extract<Job, {kind: Kind}>} JobOf */

const root = /** @type {HTMLElement} */ (document.getElementById("app"));
const status = /** @type {HTMLElement} */ (document.getElementById("status"));

/** @type {State} */
let state = emptyState;
let isWorking = false;
let isSavingAll = false;
let lastFileId = 0;
let news = ""; // what was added, for some seconds: the list may be out of sight
/** What the browser gave, and the bytes that it had then, by the ids of files. @type {Map<string, Given & {bytes?: Uint8Array, content?: string}>} */
const given = new Map();
/** The contents of the result. @type {Blob[]} */
let made = [];

/** Shows the state. What has the focus stays where it is on the screen, whatever is added above it. */
function show() {
  const focused = document.activeElement === document.body ? null : document.activeElement;
  const top = focused?.getBoundingClientRect().top ?? 0;
  document.documentElement.style.setProperty("overflow-anchor", focused ? "none" : "auto");
  const effects = { giveInput, giveExamples, save, saveAll, startOver, stopRun };
  render(<App state={state} send={send} effects={effects} />, root);
  status.textContent = state.progress || news;
  status.setAttribute("aria-busy", String(state.progress !== ""));
  if (focused?.isConnected) scrollBy(0, focused.getBoundingClientRect().top - top);
}

/** @param {string} text */
function tell(text) {
  news = text;
  setTimeout(() => {
    if (news === text) news = "";
    show();
  }, 6000);
}

/** Whether what the person does would lose new files that are not saved. @param {Action} action */
function isDiscarding(action) {
  const choosing = ["fromChosen", "intoChosen", "discChosen", "discTakenOut", "discsExchanged", "filesRemoved"];
  return choosing.includes(action.type) && hasUnsaved(state.result) && !update(state, action).result;
}

/** @param {Action} action */
function send(action) {
  const before = state;
  if (isDiscarding(action) && !confirm("Not all new files are saved yet. Go on without them?")) {
    state = { ...state, choices: { ...state.choices } }; // so that what was clicked is shown as it is
    return show();
  }
  try {
    state = update(state, action);
  } catch (error) {
    state = update(state, { type: "givingFailed", error: String(error) });
  }
  if (action.type === "filesExamined") tell(`Added to 1. Your files: ${countOf(action.files.length, "file", "files")}`);
  show();
  const isTyping = document.activeElement?.matches('[type="search"]');
  if (state.result && !before.result && !isTyping) goTo("result-heading");
  const isFirst = state.files.length > 0 && before.files.length === 0;
  if (isFirst) document.getElementById("files-heading")?.scrollIntoView();
  forgetUnused();
  work();
}

/** Forgets the bytes of files that are no longer in the list. */
function forgetUnused() {
  const jobs = state.jobs.flatMap((job) => (job.kind === "examine" ? job.given : []));
  const used = new Set([...state.files, ...state.doubles, ...jobs].map(({ id }) => id));
  for (const id of given.keys()) if (!used.has(id)) given.delete(id);
  if (!state.result) made = [];
}

/** Does the first job, and those that follow. */
async function work() {
  const job = state.jobs[0];
  if (isWorking || !job) return;
  isWorking = true;
  try {
    await doJob(job);
  } catch (error) {
    send({ type: "jobFailed", job: job.id, error: error instanceof Error ? error.message : String(error) });
  } finally {
    isWorking = false;
  }
  work();
}

/** @param {Job} job */
function doJob(job) {
  if (job.kind === "examine") return examineFiles(job);
  return job.kind === "make" ? make(job) : readFlagsOf(job);
}

/** The program, whose runs are logged with what they are for. @param {string} purpose @returns {Run} */
function runFor(purpose) {
  send({ type: "progressMade", text: `${purpose} …` });
  return async (args, files) => {
    const outcome = await stashkeep(args, files);
    const { exitStatus, output } = outcome;
    const entry = { purpose, args, exitStatus, output: toText(output.subarray(0, outputLimit)), size: output.length };
    send({ type: "programRan", entry });
    return outcome;
  };
}

// Files

/** @param {Promise<{files: Given[], leftOut: number}>} finding */
async function give(finding) {
  try {
    const { files, leftOut } = await finding;
    const facts = files.map((each) => {
      const id = `file${++lastFileId}`;
      given.set(id, each);
      const { path, size, modified, archive } = each;
      return { id, path, size, modified, archive };
    });
    send({ type: "filesGiven", given: facts, leftOut });
  } catch (error) {
    send({ type: "givingFailed", error: String(error) });
  }
}

/** @param {HTMLInputElement} input */
function giveInput(input) {
  give(filesOfInput(input));
  input.value = ""; // so that the same file can be chosen again
}

function giveExamples() {
  give(exampleFiles());
}

/** @param {string} id */
function bytesOf(id) {
  const bytes = given.get(id)?.bytes;
  if (!bytes) throw new Error("The contents of a file are missing. Add it again.");
  return bytes;
}

/** Whether a file is on the disk as it was when it was added: an emulator may write into it when it ends. @param {string} id */
async function isUnchanged(id) {
  const known = given.get(id);
  if (!known?.bytes) return true;
  const now = await readBytes(known, 0);
  return now.bytes !== undefined && isEqual(now.bytes, known.bytes);
}

/** The ids of those that are no longer on the disk as they were. @param {FileFacts[]} files */
async function findOutdated(files) {
  const outdated = [];
  for (const { id } of files) if (!(await isUnchanged(id))) outdated.push(id);
  return outdated;
}

/** Files with equal bytes have the same content. @param {string} id @param {Uint8Array} bytes */
async function findContent(id, bytes) {
  for (const other of given.values()) {
    if (other.content && other.bytes && (await isEqual(bytes, other.bytes))) return other.content;
  }
  return id;
}

/** @param {string} path @param {Uint8Array} bytes @returns {Promise<Contents>} */
async function examineSafely(path, bytes) {
  const name = uniqueText(toProgramName(path), [dataFileName], (number) => `${number}-${dataFileName}`);
  try {
    return await examine(runFor(`Looking into ${toTitle(path)}`), name, bytes);
  } catch (error) {
    return { kind: "refused", reason: "failed", error: String(error) };
  }
}

/** @param {JobOf<"examine">} job */
async function examineFiles(job) {
  const files = [];
  /** @type {string[]} */
  const outdated = [];
  let refusedSize = 0; // bytes that archives gave in vain
  for (const file of job.given) {
    const known = given.get(file.id);
    if (!known) continue; // started over meanwhile
    outdated.push(...(await findOutdated(state.files.filter(({ path }) => path === file.path))));
    const kept = [...given].flatMap(([id, { bytes }]) => (bytes && !outdated.includes(id) ? bytes.length : []));
    const sizeBefore = kept.reduce((sum, size) => sum + size, refusedSize);
    const { bytes, reason = "unreadable" } = await readBytes(known, sizeBefore);
    const contents = bytes ? await examineSafely(file.path, bytes) : { kind: /** @type {const} */ ("refused"), reason };
    const content = bytes ? await findContent(file.id, bytes) : file.id;
    if (contents.kind !== "refused") Object.assign(known, { bytes, content });
    else if (file.archive) refusedSize += bytes?.length ?? 0;
    files.push({ ...file, size: bytes?.length ?? file.size, content, contents });
  }
  send({ type: "filesExamined", job: job.id, files, outdated });
}

// Savegames

/** A medium with its bytes. @param {Medium} medium @returns {Images} */
function imagesOf({ command, kind, files }) {
  const images = files.map(({ id, name }) => {
    const bytes = bytesOf(id);
    return kind === "pair"
      ? { name, bytes: bytes.subarray(0, floppySize), tail: bytes.subarray(floppySize) }
      : { name, bytes };
  });
  return { command, files: images };
}

/** @param {JobOf<"make">} job */
async function make({ id, from, into, names }) {
  const run = runFor("Making the new files, and comparing them");
  try {
    const images = [imagesOf(from), ...(into ? [imagesOf(into)] : [])];
    const outdated = await findOutdated([...from.files, ...(into?.files ?? [])]);
    if (outdated.length > 0) return send({ type: "makingFailed", job: id, outdated });
    const files = into ? await transfer(run, images[0], images[1], names) : await takeOut(run, images[0], names);
    made = files.map(({ bytes }) => toBlob(bytes));
    const facts = files.map(({ bytes, ...file }) => ({ ...file, size: bytes.length }));
    send({ type: "filesMade", job: id, files: facts });
  } catch (error) {
    send({
      type: "makingFailed",
      job: id,
      error: error instanceof Error ? error.message : String(error),
      outdated: [],
    });
  }
}

/** @param {JobOf<"readFlags">} job */
async function readFlagsOf({ id: job, key, medium, main, included }) {
  const run = runFor("Reading the flags");
  const bytesOrNone = (/** @type {FileFacts} */ { id }) => given.get(id)?.bytes ?? new Uint8Array();
  const mainSources = main.map((file) => ({ path: file.name, bytes: bytesOrNone(file) }));
  const others = included.map((file) => ({ path: file.path, bytes: bytesOrNone(file) }));
  const data = await extract(run, imagesOf(medium));
  send({ type: "flagsRead", job, key, ...(await readFlags(run, data, mainSources, others)) });
}

/** Bytes that are no text, so that no browser adds an extension to their name. @param {Uint8Array} bytes */
function toBlob(bytes) {
  return new Blob([/** @type {Uint8Array<ArrayBuffer>} */ (bytes)], { type: "application/octet-stream" });
}

/** Has the browser save bytes under a name. @param {Blob} bytes @param {string} name */
function download(bytes, name) {
  const url = URL.createObjectURL(bytes);
  const link = document.createElement("a");
  // eslint-disable-next-line no-restricted-syntax -- a link to the page's own bytes, which the browser saves
  link.href = url;
  link.download = name;
  link.click();
  setTimeout(() => URL.revokeObjectURL(url), 60_000);
}

/** @param {number} index */
function save(index) {
  const { result } = state;
  if (!result) return;
  download(made[index], result.files[index].name);
  send({ type: "fileSaved", result: result.id, index });
}

/** Saves the files one after the other: browsers leave out some that are saved at the same time. */
async function saveAll() {
  const { result } = state;
  if (!result || isSavingAll) return;
  isSavingAll = true;
  for (const index of result.files.keys()) {
    if (state.result?.id !== result.id) break;
    save(index);
    await new Promise((resolve) => setTimeout(resolve, 300));
  }
  isSavingAll = false;
}

/** Forgets all files, unless the person wants to save first. */
function startOver() {
  if (hasUnsaved(state.result) && !confirm("Not all new files are saved yet. Start over without them?")) return;
  send({ type: "startedOver" });
  goTo("files-heading");
}

function start() {
  document.getElementById("needs")?.remove();
  const classes = document.body.classList;
  addEventListener("dragover", (event) => {
    event.preventDefault();
    classes.add("dragging");
  });
  addEventListener("dragleave", ({ relatedTarget }) => {
    if (!relatedTarget) classes.remove("dragging");
  });
  addEventListener("drop", (event) => {
    event.preventDefault();
    classes.remove("dragging");
    if (event.dataTransfer?.types.includes("Files")) give(filesOfDrop(event.dataTransfer));
  });
  addEventListener("beforeunload", (event) => {
    if (!hasUnsaved(state.result)) return;
    event.preventDefault(); // the browser asks
    event.returnValue = true; // older browsers ask only then
  });
  show();
  stashkeep([]).catch(() => {}); // so that the worker is there before the first file
}

Object.assign(globalThis, { stashkeep });
if (typeof WebAssembly === "object" && typeof DecompressionStream === "function") start();
