// The page: its state is the files and the choices of the person, and everything that is shown follows from them.
import { emptyPlan, exchangeRoles, findConcerns, makePlan, sourceRoles } from "./choices.js";
import { button, element, paragraph, radioGroup, select } from "./elements.js";
import { dataFileName, examine, hasSavegame, pairOf, readFlags, readSavegame, takeOut, transfer } from "./media.js";
import { stashkeep } from "./program.js";
import { exampleFiles, filesOfDrop, filesOfInput, readBytes } from "./reading.js";
import { toText } from "./report.js";
import { comparison, discNotes, fileList, flagTables, programOutput, savegameReport, transferResult } from "./views.js";

let files = []; // what the person gave, each with an id, a path, a size, and what `examine` says
const choices = { roles: new Map(), from: undefined, into: undefined, shown: undefined, isAccepted: false, search: "" };
const log = []; // every run of the program: what it was for, its arguments, exit status and output
const savegamesOfPairs = new Map(); // by the ids of both images
let plan = emptyPlan;
let made; // the result of a transfer
let flagReport; // that of the shown savegame, if all sources are there
let lastId = 0;

const byId = (id) => document.getElementById(id);

async function run(args, contents) {
  const outcome = await stashkeep(args, contents);
  const { exitStatus, output } = outcome;
  log.push({ purpose: byId("status").textContent, args, exitStatus, output: toText(output) });
  return outcome;
}

// Files

/** A name under which the program gets a file, beside all others. */
function programName(path, id) {
  const name = path.split("/").pop();
  const isTaken = name === dataFileName || files.some((file) => file.name === name);
  return isTaken ? `${id}-${name}` : name;
}

async function examineSafely(file) {
  try {
    return await examine(run, file);
  } catch (error) {
    return { kind: "refused", problem: `The program could not look into this file. ${error.message}` };
  }
}

async function addFile(given) {
  showStatus(`Looking into ${given.path} …`);
  const sizeBefore = files.reduce((sum, { size, bytes }) => sum + (bytes ? size : 0), 0);
  const { bytes, problem } = await readBytes(given, sizeBefore);
  const id = String(++lastId);
  const file = { id, path: given.path, name: programName(given.path, id), size: given.file.size, bytes };
  files.push({ ...file, ...(problem ? { kind: "refused", problem } : await examineSafely(file)) });
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
  const included = withRole("included").reverse(); // so that the first of a name counts
  const contents = included.map((file) => [includedPath(file), file.bytes]);
  for (const file of main.filter(Boolean)) contents.push([file.name, file.bytes]);
  return { main, contents: Object.fromEntries(contents) };
}

async function updateFlagReport() {
  const shown = shownMedium();
  const { main, contents } = findSources();
  const roles = files.map(({ id }) => `${id} ${plan.roles.get(id)}`);
  const key = [shown?.key, ...roles].join();
  if (flagReport?.key === key) return;
  flagReport = { key, given: main.filter(Boolean).length, absent: sourceRoles.slice(0, 3).filter((_, i) => !main[i]) };
  if (!shown || flagReport.absent.length > 0) return;
  showStatus("Reading the flags …");
  const names = main.map(({ name }) => name);
  Object.assign(flagReport, await readFlags(run, shown.savegame.data, names, contents));
}

// What happens

let work = Promise.resolve();

function showStatus(text) {
  byId("status").textContent = text;
}

/** Does one thing after the other. Whatever fails leaves nothing half-made, and the page goes on. */
function enqueue(change) {
  work = work.then(async () => {
    document.body.setAttribute("aria-busy", "true");
    byId("failure").replaceChildren();
    let done = "";
    try {
      done = (await change()) ?? "";
      showStatus("Looking into the savegames …");
      plan = await makePlan(files, choices, readPair);
      await updateFlagReport();
    } catch (error) {
      made = undefined;
      plan = emptyPlan;
      byId("failure").replaceChildren(
        paragraph(`That did not work, and nothing was made. ${error.message}`, "warning"),
      );
    }
    render();
    showStatus(done);
    document.body.removeAttribute("aria-busy");
    if (made && done) byId("result-heading").focus();
  });
}

/** Anything that was made belongs to the choices of before. */
function changeChoice(change) {
  enqueue(() => {
    made = undefined;
    choices.isAccepted = false;
    change();
  });
}

function addFiles(given) {
  enqueue(async () => {
    made = undefined;
    choices.isAccepted = false;
    const all = await given;
    for (const file of all) await addFile(file);
    return `${all.length === 1 ? "One file" : `${all.length} files`} added.`;
  });
}

function removeFile(removed) {
  changeChoice(() => {
    files = files.filter((file) => file !== removed);
    choices.roles.delete(removed.id);
  });
}

function giveRole({ id }, role) {
  changeChoice(() => (choices.roles = exchangeRoles(plan.roles, id, role)));
}

function makeFiles() {
  enqueue(async () => {
    showStatus("Making the new files, and comparing them …");
    const { from, into } = plan;
    const newFiles =
      into.key === "data" ? await takeOut(run, from.medium) : await transfer(run, from.medium, into.medium);
    made = { files: newFiles, from, into };
    return "Compared and ready to be saved.";
  });
}

function saveFile({ name, bytes }) {
  const url = URL.createObjectURL(new Blob([bytes]));
  element("a", { href: url, download: name }).click();
  setTimeout(() => URL.revokeObjectURL(url), 60_000);
}

// What is shown

function renderFiles() {
  const isOpen = byId("sources")?.open ?? false;
  byId("file-list").replaceChildren(...fileList(files, plan, { onrole: giveRole, onremove: removeFile }));
  if (byId("sources")) byId("sources").open = isOpen;
  byId("discs").replaceChildren(...discNotes(plan, (disc2, { id }) => giveRole({ id }, plan.roles.get(disc2.id))));
}

function makeButton({ from, into }, concerns) {
  const isReady = concerns.length === 0 || choices.isAccepted;
  const text =
    into.key === "data"
      ? `Make the savegame data file of ${from.title}`
      : `Put the savegame into a copy of ${into.title}`;
  return button("make-button", text, makeFiles, { className: "main", disabled: !isReady });
}

function concernBox(concerns) {
  const onchange = ({ target }) => {
    choices.isAccepted = target.checked;
    render();
  };
  const checkbox = element("input", { type: "checkbox", id: "accept", checked: choices.isAccepted, onchange });
  return element(
    "div",
    { className: "warning" },
    concerns.map((concern) => paragraph(concern)),
    element("label", { className: "option" }, checkbox, element("span", {}, "Move it all the same")),
  );
}

function renderMove() {
  const { fromOptions, intoOptions, from, into } = plan;
  byId("move").hidden = fromOptions.length === 0;
  const parts = [
    radioGroup("from", "From: which savegame?", fromOptions, from?.key, (key) =>
      changeChoice(() => (choices.from = key)),
    ),
  ];
  const refusals = new Set(fromOptions.map(({ refusal }) => refusal));
  if (!refusals.has(undefined)) parts.push(...[...refusals].map((refusal) => paragraph(refusal, "warning")));
  if (from && intoOptions.length === 0) parts.push(paragraph("Add the image that the savegame shall move into."));
  if (intoOptions.length > 0 && from) {
    parts.push(
      radioGroup("into", "Into: where shall it go?", intoOptions, into?.key, (key) =>
        changeChoice(() => (choices.into = key)),
      ),
    );
  }
  if (from && into) {
    const concerns = findConcerns(from.savegame);
    if (into.savegame && hasSavegame(into.savegame)) parts.push(comparison(from, into));
    if (concerns.length > 0) parts.push(concernBox(concerns));
    parts.push(element("p", { className: "buttons" }, makeButton(plan, concerns)));
  }
  byId("move-choices").replaceChildren(...parts);
  byId("result").replaceChildren(...(made ? [transferResult(made, saveFile)] : []));
}

function flagProblems({ flags, given, absent, missing = [], output }) {
  const problems = [];
  const hasFailed = output !== undefined && !flags;
  if (given > 0 && absent.length > 0) problems.push(`For the flags, these sources are missing: ${absent.join(", ")}.`);
  if (missing.length > 0) problems.push(`Looked for and not found: ${missing.join(", ")}.`);
  if (hasFailed) problems.push("A source could not be read, so there are no flags.");
  if (flags?.game.length === 0) problems.push("No game flags were found: is the right file used as scr_flags.asm?");
  if (flags?.world.length === 0)
    problems.push("No world flags were found: is the right file used as scr_globaldefines.asm?");
  const parts = problems.map((text) => paragraph(text, "warning"));
  return hasFailed ? [...parts, programOutput(output)] : parts;
}

function flagSearch(flags) {
  const tables = element("div", { id: "flags" }, flagTables(flags, choices.search));
  const oninput = ({ target }) => {
    choices.search = target.value;
    tables.replaceChildren(...flagTables(flags, choices.search));
  };
  const field = element("input", { type: "search", id: "flag-search", value: choices.search, oninput });
  return [element("label", { className: "select" }, "Search the flags", field), tables];
}

function renderReport() {
  const shown = shownMedium();
  byId("look").hidden = !shown;
  if (!shown) return;
  const options = plan.media.map(({ key, title }) => [key, title]);
  const show = (key) => enqueue(() => void (choices.shown = key));
  byId("report").replaceChildren(
    select("shown", "Savegame in", options, shown.key, show),
    ...savegameReport(shown.savegame),
    ...flagProblems(flagReport),
    ...(flagReport.flags ? flagSearch(flagReport.flags) : []),
  );
}

/** A command line as one types it, with quotes around names that need them. */
function commandLine(args) {
  return ["stashkeep", ...args].map((word) => (/^[\w./-]+$/.test(word) ? word : `"${word}"`)).join(" ");
}

function renderLog() {
  byId("log").hidden = log.length === 0;
  if (!byId("log-details").open) return;
  const entries = log.flatMap(({ purpose, args, exitStatus, output }, i) => [
    purpose === log[i - 1]?.purpose ? "" : element("h3", {}, purpose),
    element("pre", {}, `$ ${commandLine(args)}\n${output}\n(exit status ${exitStatus})`),
  ]);
  byId("log-entries").replaceChildren(...entries);
}

function render() {
  const focused = document.activeElement?.id;
  renderFiles();
  renderMove();
  renderReport();
  renderLog();
  if (focused) (byId(focused) ?? byId("files-heading")).focus();
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
  addEventListener("dragleave", ({ relatedTarget }) => relatedTarget ?? document.body.classList.remove("dragging"));
  addEventListener("drop", (event) => {
    event.preventDefault();
    document.body.classList.remove("dragging");
    addFiles(filesOfDrop(event.dataTransfer));
  });
}

globalThis.stashkeep = stashkeep;
if (typeof WebAssembly === "object" && typeof DecompressionStream === "function") start();
