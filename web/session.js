// The session: the files that the person gave and the choices made, and what follows from them. It knows nothing of how
// that is shown.
import { emptyPlan, findHolder, makePlan, sourceRoles } from "./choices.js";
import { dataFileName, examine, isEqual, pairOf, readFlags, readSavegame, takeOut, transfer } from "./media.js";
import { stashkeep } from "./program/stashkeep.js";
import { readBytes } from "./files/reading.js";
import { toText } from "./report.js";

export const session = {
  files: [], // each with an id, a title, a name for the program, and what `examine` says
  lastId: 0,
  choices: {
    roles: new Map(), // of files by their ids
    byHand: new Set(), // the ids of those whose roles the person has changed
    from: undefined,
    into: undefined,
    shown: undefined, // the medium in the report
    accepted: "", // the concerns that the person has agreed to
    search: "",
  },
  plan: emptyPlan,
  made: undefined, // the result of a transfer
  flagReport: undefined, // that of the shown savegame, if all sources are there
  failure: "", // in words
  purpose: "", // what the program is running for
  onPurpose: () => {}, // is called with it
  log: [], // every run of the program: what it was for, its arguments, exit status and output
};
const savegamesOfPairs = new Map(); // by the ids of both images

export function setPurpose(text) {
  session.purpose = text;
  session.onPurpose(text);
}

async function run(args, contents) {
  const outcome = await stashkeep(args, contents);
  const { exitStatus, output } = outcome;
  session.log.push({ purpose: session.purpose, args, exitStatus, output: toText(output) });
  return outcome;
}

/** A title or name that no other file has: with a number, if necessary. */
function uniqueText(text, withNumber, isTaken) {
  let unique = text;
  for (let number = 2; isTaken(unique); ++number) unique = withNumber(number);
  return unique;
}

function uniqueTitle(path) {
  const isTaken = (title) => session.files.some((file) => file.title === title);
  return uniqueText(path, (number) => `${path} (${number})`, isTaken);
}

/** The name under which the program gets a file. */
function uniqueName(path) {
  const name = path.split("/").pop();
  const isTaken = (candidate) => candidate === dataFileName || session.files.some((file) => file.name === candidate);
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
  setPurpose(`Looking into ${path} …`);
  const sizeBefore = session.files.reduce((sum, { size, bytes }) => sum + (bytes ? size : 0), 0);
  const { bytes, problem } = await readBytes(given, sizeBefore);
  const id = String(++session.lastId);
  for (const other of session.files.filter((candidate) => candidate.path === path && candidate.bytes && bytes)) {
    const isOld = !(await isUnchanged(other));
    if (!isOld && !(await isEqual(other.bytes, bytes))) continue; // another file of this name
    if (!isOld && other.kind !== "refused") return;
    session.files = session.files.filter((remaining) => remaining !== other);
    if (session.plan.roles.has(other.id)) session.choices.roles.set(id, session.plan.roles.get(other.id));
  }
  const added = { id, file, path, title: uniqueTitle(path), name: uniqueName(path), size: file.size, bytes };
  session.files.push({ ...added, ...(problem ? { kind: "refused", problem } : await examineSafely(added)) });
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

export function shownMedium() {
  return (
    session.plan.media.find(({ key }) => key === session.choices.shown) ?? session.plan.from ?? session.plan.media[0]
  );
}

/** The path at which the program looks for an included file. */
function includedPath({ path }) {
  const inGenerated = path.split("generated/").slice(1).pop();
  return `generated/${inGenerated ?? path.split("/").pop()}`;
}

/** The main sources in the order of the command, some of which may be missing, and the contents of all by their paths. */
function findSources() {
  const withRole = (role) => session.files.filter(({ id }) => session.plan.roles.get(id) === role);
  const main = sourceRoles.slice(0, 3).map((role) => withRole(role)[0]);
  const empty = session.files.filter(({ kind, size }) => kind === "refused" && size === 0); // a source may be empty
  const included = [...withRole("included"), ...empty].reverse(); // so that the first of a name counts
  const contents = included.map((file) => [includedPath(file), file.bytes ?? new Uint8Array()]);
  for (const file of main.filter(Boolean)) contents.push([file.name, file.bytes]);
  return { main, contents: Object.fromEntries(contents) };
}

/** Reads the flags of the shown savegame, if that or the sources have changed. */
async function updateFlagReport() {
  const shown = shownMedium();
  const { main, contents } = findSources();
  const key = [shown?.key, ...session.files.map(({ id }) => `${id} ${session.plan.roles.get(id)}`)].join();
  if (session.flagReport?.key === key) return;
  session.flagReport = {
    key,
    given: main.filter(Boolean).length,
    absent: sourceRoles.slice(0, 3).filter((_, i) => !main[i]),
  };
  if (!shown || session.flagReport.absent.length > 0) return;
  setPurpose("Reading the flags …");
  const names = main.map(({ name }) => name);
  try {
    Object.assign(session.flagReport, await readFlags(run, shown.savegame.data, names, contents));
  } catch (error) {
    session.flagReport.output = error.message;
  }
}

/** Adds files; `leftOut` is the number of those that were too many. Returns what to say. */
export async function addFiles({ files, leftOut }) {
  const idBefore = session.lastId;
  for (const given of files) await addFile(given);
  if (leftOut > 0) {
    session.failure = `There are too many files in this folder: ${leftOut} of them were left out. Add single files instead.`;
  }
  if (files.length === 0) return "There are no files in it.";
  const count = session.files.filter(({ id }) => Number(id) > idBefore).length;
  if (count === 0) return "These files are in the list already.";
  return count === 1 ? "One file added." : `${count} files added.`;
}

export function removeFile(removed) {
  session.files = session.files.filter(({ id }) => id !== removed.id);
}

export function removeAllFiles() {
  session.files = [];
  Object.assign(session.choices, { from: undefined, into: undefined, shown: undefined, accepted: "" });
}

/** Gives a file a role; the file that has it gets the role of the first one. */
export function giveRole({ id }, role) {
  const { choices, plan } = session;
  const holder = findHolder(plan.roles, role);
  choices.roles = new Map(plan.roles).set(holder ?? id, plan.roles.get(id)).set(id, role);
  for (const changed of [id, holder]) choices.byHand.add(changed);
}

/** Makes new files, or the data file, of the savegame. Throws if anything is not as it has to be. */
export async function makeFiles({ from, into }, concerns) {
  session.made = undefined;
  setPurpose("Making the new files, and comparing them …");
  for (const file of [...from.files, ...(into.files ?? [])]) await requireUnchanged(file);
  const isDataFile = into.key === "data";
  const files = isDataFile ? await takeOut(run, from.medium) : await transfer(run, from.medium, into.medium);
  session.made = { files, from, into, concerns };
}

/** Whether two options of different plans are the same files. */
function isSameOption(option, other) {
  const idsOf = ({ key, files: all = [] }) => [key === "data", ...all.map(({ id }) => id)].join();
  return option !== undefined && other !== undefined && idsOf(option) === idsOf(other);
}

/** Finds out anew what can be done. What was made stays only as long as it belongs to what is chosen. */
export async function updatePlan() {
  setPurpose("Looking into the savegames …");
  session.plan = await makePlan(session.files, session.choices, readPair).catch((error) => {
    session.failure = `The program could not look into the savegames. ${error.message}`;
    return emptyPlan;
  });
  if (
    session.made &&
    !(isSameOption(session.made.from, session.plan.from) && isSameOption(session.made.into, session.plan.into))
  )
    session.made = undefined;
  await updateFlagReport();
}
