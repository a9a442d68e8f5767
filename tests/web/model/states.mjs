// States of the page in words: files by their titles, media and pairs like "disc2.d64 + disc3.d64".
import { findMedia } from "../../../web/model/media.js";
import { emptyState, update } from "../../../web/model/update.js";

let lastId = 0;

function contentsOf(path, { holds, canTake = true, refused, content }) {
  const words = holds.split(" "); // one for both discs, or one for each
  const fields = new Map([["money", "40"]]);
  const disc = (state) => ({
    state,
    damagedPages: state === "damaged" ? [1] : [],
    fields,
    bytes: state === "none" ? [0, 0] : [0, content],
  });
  const savegame = [disc(words[0]), disc(words.at(-1))];
  if (refused) return { kind: "refused", reason: refused };
  if (path.endsWith(".d64")) return { kind: "floppy", disc: savegame[0], tailSize: 0 };
  if (path.endsWith(".reu")) return { kind: "memory", command: "reu", savegame, canTake };
  return path.endsWith(".dat") ? { kind: "data", savegame } : { kind: "source" };
}

/** An examined file. What its discs hold is "good", "none" or "damaged"; in a memory image it is "none", if not said. */
export function file(path, { modified = 1, size = 512, ...others } = {}) {
  const id = `file${++lastId}`;
  const facts = { holds: path.endsWith(".reu") ? "none" : "good", content: `content of ${id}`, ...others };
  return { id, path, size, modified, content: facts.content, contents: contentsOf(path, facts) };
}

/** The state after steps, from an empty page or, if the first one is a state, from there. */
export function stateAfter(...steps) {
  return steps.reduce((state, step) => (typeof step === "function" ? step(state) : step), emptyState);
}

const toFile = (fileOrPath) => (typeof fileOrPath === "string" ? file(fileOrPath) : fileOrPath);
export const nameOf = (medium) => medium.files.map(({ title }) => title).join(" + ");
const titleIn = (state, id) => state.files.find((other) => other.id === id)?.title;

function idOf(state, title) {
  const found = state.files.find((other) => other.title === title);
  if (!found) throw new Error(`There is no file ${title}.`);
  return found.id;
}

function idOfMedium(state, name) {
  const medium = findMedia(state).find((other) => nameOf(other) === name);
  if (!medium && name !== "data") throw new Error(`There is no medium ${name}.`);
  return medium?.id ?? name;
}

/** The pair of which a file is a part. */
function pairWith(state, title) {
  const id = idOf(state, title);
  return state.pairs.find((pair) => [2, 3].some((disc) => pair[disc]?.file === id)).id;
}

const step = (type, makeFields) => (state) => update(state, { type, ...makeFields?.(state) });

// What the person does

export const given = (...files) => step("filesGiven", () => ({ given: files.map(toFile), leftOut: 0 }));
export const removed = (title) => step("fileRemoved", (state) => ({ id: idOf(state, title) }));
export const fromChosen = (name) => step("fromChosen", (state) => ({ medium: idOfMedium(state, name) }));
export const shownChosen = (name) => step("shownChosen", (state) => ({ medium: idOfMedium(state, name) }));
export const intoChosen = (name) => step("intoChosen", (state) => ({ medium: idOfMedium(state, name) }));
export const agreed = step("agreementChosen", () => ({ isAgreed: true }));
export const makeAsked = step("makeAsked");
export const fileSaved = step("fileSaved", ({ result }) => ({ result: result.id, index: 0 }));
export const startedOver = step("startedOver");
export const doublesAdded = step("doublesAdded");
export const discTakenOut = (title) => step("discTakenOut", (state) => ({ file: idOf(state, title) }));
export const discsExchanged = (title) => step("discsExchanged", (state) => ({ pair: pairWith(state, title) }));

/** A file becomes disc 2 or 3 of the pair with another file, or of a new pair. */
export const discChosen = (title, disc, other) =>
  step("discChosen", (state) => ({ file: idOf(state, title), disc, pair: other && pairWith(state, other) }));

export const roleChosen = (title, role) => step("roleChosen", (state) => ({ file: idOf(state, title), role }));

// What the page's work finds

/** The files that were given last are examined; meanwhile it was found that some of the earlier ones have changed. */
export const examined = (...outdated) =>
  step("filesExamined", (state) => {
    const { id, given: files } = state.jobs.findLast(({ kind }) => kind === "examine");
    return { job: id, files, outdated: outdated.map((title) => idOf(state, title)) };
  });

export const examinedLate = ({ id, given: files }) => step("filesExamined", () => ({ job: id, files, outdated: [] }));
export const flagsRead = ({ id, key }, flags) =>
  step("flagsRead", () => ({ job: id, key, flags, output: "", missing: [] }));

/** Files are given together, and examined. */
export const added = (...files) => {
  return (state) => stateAfter(state, given(...files), examined());
};
export const addedSingly = (...files) => {
  return (state) => stateAfter(state, ...files.map((each) => added(each)));
};

/** A file is given again after it has changed on the disk. */
export const addedAnew = (title, changed) => {
  return (state) => stateAfter(state, given(changed ?? file(title, { modified: 2 })), examined(title));
};

/** The first thing that is being made, or another one, is ready. */
export const filesMade = (making) =>
  step("filesMade", ({ jobs }) => {
    const { id } = making ?? jobs.find(({ kind }) => kind === "make");
    return { job: id, files: [{ name: "made", size: 1, changedBytes: 1, tailSize: 0 }] };
  });

// What the page shows

export function pairsOf(state) {
  const titleOf = (place) => (place ? titleIn(state, place.file) : "–");
  return state.pairs.map((pair) => `${titleOf(pair[2])} + ${titleOf(pair[3])}`);
}

/** The name of what is chosen. */
export function chosen(state, choice) {
  const medium = findMedia(state).find(({ id }) => id === state.choices[choice]);
  return medium ? nameOf(medium) : state.choices[choice];
}
