// What holds after every action, whatever came before. SEQUENCES is how many random sequences of actions are tried, and SEED
// repeats those of a failure.
import test from "node:test";
import { isDeepStrictEqual } from "node:util";
import fc from "fast-check";
import { findConcerns } from "../../../web/model/concerns.js";
import { update } from "../../../web/model/update.js";
import { file as newFile, withFiles } from "./states.mjs";
import { actionsIn, disks, nameOfMade, sequences, World } from "./world.mjs";

const sequenceCount = Number(process.env.SEQUENCES ?? 2000);
const seed = process.env.SEED && Number(process.env.SEED);

const discsOf = (pair) => [2, 3].flatMap((disc) => pair?.[disc]?.file ?? []);
const pairWith = (state, file) => state.pairs.find((pair) => discsOf(pair).includes(file));

/** Where a file is, in words; nothing if it is in no pair. */
function placeOf(state, file) {
  const pair = pairWith(state, file);
  return pair && `disc ${pair[2]?.file === file ? 2 : 3} of pair ${pair.id}`;
}

/** Whether the files of a medium are where its id says. */
function isThere(state, medium) {
  const [first, second] = medium.split("+");
  if (second === undefined) return state.files.some(({ id }) => id === first);
  return state.pairs.some((pair) => pair[2]?.file === first && pair[3]?.file === second);
}

function isOutdated(state, medium) {
  return state.files.some((file) => file.isOutdated && medium.split("+").includes(file.id));
}

// Each of these returns what is wrong, if anything is. `replaced` has the ids of files that others replace, which the page
// says.

function filesStay({ before, action, after, replaced }) {
  for (const old of before.files) {
    const now = after.files.find(({ id }) => id === old.id);
    if (now === old) continue;
    if (now && !isDeepStrictEqual({ ...now, isOutdated: old.isOutdated }, old)) return `${old.id} is not what it was`;
    if (now || action.type === "startedOver" || action.ids?.includes(old.id)) continue;
    const by = after.files.find(({ id }) => id === replaced.get(old.id));
    if (by?.title !== old.title) return `${old.id} left the list, although nobody removed it`;
    if (old.contents.kind === "refused") continue;
    if (!old.isOutdated && !action.outdated.includes(old.id)) return `${old.id} was replaced, but had not changed`;
    const namesakes = [...before.files, ...action.files].filter(({ path }) => path === old.path);
    if (namesakes.length > 2) return `${old.id} was replaced, although others of its name could be meant`;
  }
  for (const fact of ["id", "title", "name"]) {
    if (new Set(after.files.map((each) => each[fact])).size < after.files.length) return `two files have one ${fact}`;
  }
}

/** The files that a person moves. */
const movedBy = {
  filesRemoved: ({ ids }) => ids,
  discTakenOut: ({ file }) => [file],
  discsExchanged: ({ pair }, state) => discsOf(state.pairs.find(({ id }) => id === pair)),
  discChosen: ({ file, pair, disc }, state) => [file, state.pairs.find(({ id }) => id === pair)?.[disc]?.file],
  startedOver: (_, state) => state.pairs.flatMap(discsOf),
};

function placesStay({ before, action, after, replaced }) {
  const moved = movedBy[action.type]?.(action, before) ?? [];
  const paired = after.pairs.flatMap(discsOf);
  if (new Set(paired).size < paired.length) return "a file is in two places";
  for (const file of new Set([...before.pairs.flatMap(discsOf), ...paired])) {
    const [old, now] = [placeOf(before, file), placeOf(after, file)];
    const contents = after.files.find(({ id }) => id === file)?.contents;
    if (now && contents?.kind !== "floppy") return `${file} is ${now}, but no floppy image in the list`;
    if (old === now || moved.includes(file) || (!now && replaced.has(file))) continue;
    if (old) return `${file} was ${old}, and nobody moved it`;
    const earlier = [...replaced.keys()].find((id) => replaced.get(id) === file);
    if (earlier && placeOf(before, earlier) === now) continue;
    const pair = pairWith(after, file);
    const isNew = (id) => !before.files.some((each) => each.id === id);
    if (before.pairs.some(({ id }) => id === pair.id)) return `${file} filled a place that was left empty`;
    if (discsOf(pair).length < 2 || !discsOf(pair).some(isNew)) return `${file} was paired, although nothing was added`;
  }
}

/** The person's actions that change a choice. */
const choosing = {
  from: ["fromChosen", "startedOver"],
  into: ["intoChosen", "fromChosen", "startedOver"],
  shown: ["shownChosen", "startedOver"],
  compared: ["comparedChosen", "shownChosen", "startedOver"],
};

function choicesStay({ before, action, after }) {
  for (const name of Object.keys(choosing)) {
    const [old, now] = [before.choices[name], after.choices[name]];
    if (now && now !== "data" && !isThere(after, now)) return `${name} is chosen, but its files are not there`;
    if (choosing[name].includes(action.type)) continue;
    if (before.gone[name] && after.gone[name] !== before.gone[name]) return `it is no longer said that ${name} is gone`;
    if (now === old) continue;
    if (!old && before.gone[name]) return `${name} was chosen, although that is left to the person`;
    if (old && now) return `${name} changed, although nobody chose`;
    const isUsable = old && old !== "data" && isThere(after, old) && !isOutdated(after, old);
    if (isUsable) return `${name} is gone, although its files are there`;
    if (old && old !== "data" && !after.gone[name]) return `${name} is gone, and the page does not say so`;
  }
  if (after.choices.from && after.choices.from === after.choices.into) return "from and into are the same";
}

const inWords = (concerns) =>
  concerns.map(({ kind, medium, disc, page, file }) => [kind, medium.id, disc, page, file?.id].join(" ")).join(", ");

function agreementsStay({ before, after, agreedTo }) {
  const { agreed } = after.choices;
  if (agreed && inWords(findConcerns(after)) !== agreedTo) return "the agreement is about other concerns";
  const asked = after.jobs.find(({ id, kind }) => kind === "make" && !before.jobs.some((job) => job.id === id));
  if (asked && inWords(asked.concerns) !== inWords(findConcerns(before))) return "concerns are forgotten";
  if (asked?.concerns.length > 0 && inWords(asked.concerns) !== agreedTo) return "nobody has agreed to what is made";
}

function resultIsOfWhatIsChosen({ before, action, after, begun }) {
  const chosen = nameOfMade(after.choices.from, after.choices.into);
  const [old, now] = [before.result?.files[0].name, after.result?.files[0].name];
  if (now && now !== chosen) return "the result is of other files than those that are chosen";
  const waiting = after.jobs.filter(({ id, kind }) => kind === "make" && !begun.has(id));
  const isOther = ({ from, into }) => nameOfMade(from.id, into?.id ?? "data") !== chosen;
  if (waiting.some(isOther)) return "something is going to be made that is not chosen";
  if (!old || now || action.type === "startedOver") return undefined;
  if (old === chosen) return "the result is gone, although its files are chosen";
  const isSaved = before.result.files.every((file) => file.isSaved);
  if (!isSaved && after.gone.result !== old) return "the result is gone, and the page does not say so";
}

function failuresAreAlone({ before, action, after }) {
  const job = before.jobs.find(({ id }) => id === action.job);
  if (action.job && !job && after !== before) return "a late answer changed something";
  if (job && after.jobs.some(({ id }) => id === job.id)) return "a job that has ended goes on";
  if (!job || !["jobFailed", "makingFailed"].includes(action.type)) return undefined;
  const hasFoundChanges = action.outdated?.length > 0; // on the disk, so that choices are gone
  for (const part of hasFoundChanges ? ["pairs", "sources"] : ["pairs", "sources", "choices", "gone", "result"]) {
    if (!isDeepStrictEqual(after[part], before[part])) return `a failure has changed ${part}`;
  }
  const isSaid = after.notices.length > before.notices.length || job.kind === "readFlags";
  if (!isSaid) return "a failure is not said";
}

const invariants = [filesStay, placesStay, choicesStay, agreementsStay, resultIsOfWhatIsChosen, failuresAreAlone];

/** Makes whoever changes an earlier state throw. */
function freeze(value) {
  if (typeof value !== "object" || value === null || Object.isFrozen(value)) return value;
  Object.values(Object.freeze(value)).forEach(freeze);
  return value;
}

function findReplaced(before, after) {
  const isNew = ({ id }) => !before.notices.some((old) => old.id === id);
  const notices = after.notices.filter((notice) => notice.kind === "replaced" && isNew(notice));
  return new Map(notices.map(({ old, file }) => [old.id, file.id]));
}

const shorten = (key, value) =>
  ["given", "files"].includes(key) ? value.map(({ id, path, name }) => `${id} ${path ?? name}`) : value;

/** Does the actions of a sequence; after each one, the invariants are checked. */
function tryOut(disk, sequence) {
  const world = new World(disk);
  const trace = [];
  const fail = (message) => {
    throw new Error([message, ...trace].join("\n"));
  };
  let agreedTo;
  for (const action of actionsIn(world, sequence)) {
    trace.push(JSON.stringify(action, shorten));
    const before = world.state;
    if (action.type === "agreementChosen") agreedTo = inWords(findConcerns(before));
    const after = freeze(update(before, action));
    const step = { before, action, after, agreedTo, begun: world.begun, replaced: findReplaced(before, after) };
    for (const findFault of invariants) {
      const fault = findFault(step);
      if (fault) fail(fault);
    }
    world.enter(after);
  }
  const later = withFiles(world.state, newFile("new/disc2.d64"), newFile("new/disc3.d64"));
  if (later.pairs.length === world.state.pairs.length) fail("nothing can be added any more");
}

test("the invariants hold after every action, whatever came before", () => {
  fc.assert(fc.property(disks, sequences, tryOut), { numRuns: sequenceCount, seed, includeErrorInReport: true });
});
