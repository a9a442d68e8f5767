// The state of the page, and what each event makes of it: update(state, action). Nothing here knows a browser.
//
// Files never change, and their ids are never used again. What a choice, an agreement or a result names are ids, so that
// each of them holds only as long as its very files are where they were; then it is gone, and `gone` says so.
import { findConcerns, keyOf } from "./concerns.js";
import {
  findFromOptions,
  findIntoOptions,
  findMedia,
  findMedium,
  hasSavegame,
  isBlank,
  isOutdated,
  isPossible,
  newDataFile,
  titleOf,
} from "./media.js";
import { withEntry } from "./log.js";
import { nameOfBackup, namesOfCopies } from "./made_names.js";
import { dataFileName, insertBeforeExtension, isolate, toProgramName, toTitle, uniqueText } from "./names.js";
import { exchangeDiscs, guessPairs, placeDisc, renewInPairs, replaceInPairs, withoutEmptyPairs } from "./pairs.js";
import { canBeSource, findSources, giveRole, guessSources, replaceInSources } from "./sources.js";

/** @import { ChoiceName, DiscNumber, ExaminedFile, FileFacts, FlagReading, GivenFile, Job, LogEntry, MadeFile } from "./types.js" */
/** @import { Notice, Option, SourceRole, State } from "./types.js" */

/** @type {State} */
export const emptyState = {
  files: [],
  doubles: [],
  pairs: [],
  sources: {},
  choices: {},
  gone: {},
  flagReports: [],
  jobs: [],
  progress: "",
  notices: [],
  log: [],
  search: "",
  lastId: 0,
};

/** A new id. @param {State} state */
function withId(state) {
  return { id: String(state.lastId + 1), state: { ...state, lastId: state.lastId + 1 } };
}

/** @param {State} state @param {Record<string, unknown>} notice @returns {State} */
function withNotice(state, notice) {
  const { id, state: next } = withId(state);
  return { ...next, notices: [...next.notices, /** @type {Notice} */ ({ id, ...notice })] };
}

/** @param {State} state @param {Record<string, unknown>} job @returns {State} */
function withJob(state, job) {
  const { id, state: next } = withId(state);
  return { ...next, jobs: [...next.jobs, /** @type {Job} */ ({ id, ...job })] };
}

/** @param {State} state @param {string} job @returns {State} */
function withoutJob(state, job) {
  return { ...state, jobs: state.jobs.filter(({ id }) => id !== job), progress: "" };
}

// Files

/**
 * The file that a new one replaces: a refused one of its path, or one that has changed on the disk if it is the only one
 * of this path, here and among the new files, and older.
 *
 * @param {FileFacts[]} earlier those of its path
 * @param {ExaminedFile} file
 * @param {boolean} isOnlyOne
 */
function findReplaced(earlier, file, isOnlyOne) {
  if (file.contents.kind === "refused" && earlier.some(({ contents }) => contents.kind !== "refused")) return undefined;
  const refused = earlier.filter(({ contents }) => contents.kind === "refused");
  if (refused.length === 1) return refused[0];
  const isSure = isOnlyOne && earlier.length === 1 && earlier[0].isOutdated && earlier[0].modified < file.modified;
  return isSure ? earlier[0] : undefined;
}

/** A letter, since a number in a name may be that of a disc. @param {number} number */
function letterOf(number) {
  return String.fromCodePoint("a".charCodeAt(0) + number - 1);
}

/** @param {State} state @param {FileFacts} file @returns {State} */
function addFile(state, file) {
  const plainTitle = toTitle(file.path);
  const titles = state.files.map((other) => other.title);
  const title = uniqueText(plainTitle, titles, (number) => `${plainTitle} (${number})`);
  const plain = toProgramName(file.path);
  const names = [dataFileName, ...state.files.map((other) => other.name)];
  const name = uniqueText(plain, names, (number) => insertBeforeExtension(plain, `-${letterOf(number)}`));
  return { ...state, files: [...state.files, { ...file, title, name }] };
}

/** @param {State} state @param {FileFacts} old @param {FileFacts} file @returns {State} */
function replaceFile(state, old, file) {
  const renewed = { ...file, title: old.title, name: old.name };
  const isFloppy = file.contents.kind === "floppy"; // it may be cut off now
  const next = {
    ...state,
    files: state.files.map((other) => (other === old ? renewed : other)),
    pairs: isFloppy ? renewInPairs(state.pairs, old.id, file.id) : replaceInPairs(state.pairs, old.id),
    sources: replaceInSources(state.sources, old.id, canBeSource(file) ? file.id : undefined),
  };
  return withNotice(next, { kind: "replaced", old, file: renewed });
}

/**
 * Guesses what new files are, which is done once.
 *
 * @param {State} before
 * @param {State} state
 * @param {string} batch
 * @returns {State}
 */
function withGuesses(before, state, batch) {
  const added = state.files.filter(({ id }) => !before.files.some((file) => file.id === id));
  let next = { ...state, sources: guessSources(state.sources, added) };
  for (const pair of guessPairs(next.files, next.pairs, batch, added)) {
    const { id, state: numbered } = withId(next);
    next = { ...numbered, pairs: [...numbered.pairs, { id, ...pair }] };
  }
  return next;
}

/**
 * Which earlier file a new one is: of the same path, date and contents, and not changed since.
 *
 * @param {FileFacts} other
 * @param {ExaminedFile} file
 */
function isSameFile(other, file) {
  const isUsable = !other.isOutdated && other.contents.kind !== "refused";
  return isUsable && other.content === file.content && other.modified === file.modified;
}

/** Whether a file is a picture, a document or the like, of which nobody wants to hear. @param {ExaminedFile} file */
function isIgnored({ contents }) {
  return contents.kind === "refused" && contents.reason === "ignored";
}

/** @param {State} state @param {{job: string, files: ExaminedFile[], outdated: string[]}} action @returns {State} */
function filesExamined(state, { job, files, outdated }) {
  if (!state.jobs.some(({ id }) => id === job)) return state; // started over meanwhile
  const ended = withoutJob(state, job);
  let next = { ...ended, files: markOutdated(ended.files, outdated) };
  const before = next.files;
  const ignored = files.filter(isIgnored).map(({ path }) => path);
  if (ignored.length > 0) next = withNotice(next, { kind: "ignored", paths: ignored });
  for (const examined of files.filter((each) => !isIgnored(each))) {
    const file = { ...examined, batch: job, title: "", name: "", isOutdated: false };
    const earlier = before.filter(({ path }) => path === file.path);
    const isOnlyOne = files.filter(({ path }) => path === file.path).length === 1;
    const replaced = findReplaced(earlier, file, isOnlyOne);
    if (earlier.some((other) => isSameFile(other, file))) next = { ...next, doubles: [...next.doubles, file] };
    else if (replaced && next.files.includes(replaced)) next = replaceFile(next, replaced, file);
    else next = addFile(next, file);
  }
  return withGuesses(state, next, job);
}

/** @param {FileFacts[]} files @param {string[]} outdated */
function markOutdated(files, outdated) {
  return files.map((file) => (outdated.includes(file.id) ? { ...file, isOutdated: true } : file));
}

/** @param {State} state @param {{ids: string[]}} action @returns {State} */
function filesRemoved(state, { ids }) {
  return {
    ...state,
    files: state.files.filter(({ id }) => !ids.includes(id)),
    pairs: ids.reduce((pairs, id) => replaceInPairs(pairs, id), state.pairs),
    sources: ids.reduce((sources, id) => replaceInSources(sources, id), state.sources),
  };
}

// Choices

/**
 * The change that a choice makes; the medium "" is none. What is no longer possible cannot be chosen: a click can come just
 * before the page shows that.
 *
 * @param {ChoiceName} name
 * @param {(state: State) => Option[]} findOptions
 * @returns {(state: State, action: {medium: string}) => State}
 */
function choose(name, findOptions) {
  return (state, { medium }) => {
    const always = name === "into" ? ["", newDataFile] : [""];
    const option = findOptions(state).find(({ id }) => id === medium);
    if (!always.includes(medium) && !(option && isPossible(option))) return state;
    return {
      ...withoutNotices(state, "notMade"),
      choices: { ...state.choices, [name]: medium === "" ? undefined : medium },
      gone: { ...state.gone, [name]: undefined },
    };
  };
}

/** @param {State} state @param {{medium: string}} action @returns {State} */
function fromChosen(state, { medium }) {
  const next = choose("from", findFromOptions)(state, { medium });
  if (next.choices.from === state.choices.from) return state;
  // What it should go into was meant for another savegame.
  return { ...next, choices: { ...next.choices, into: undefined }, gone: { ...next.gone, into: undefined } };
}

/**
 * Chooses what is the only possibility, and replaces nothing. What the person has to choose anew is not chosen.
 *
 * @param {State} state
 * @returns {State}
 */
function chooseOnlyPossible(state) {
  const choices = { ...state.choices };
  const { gone } = state;
  const findOnly = (/** @type {{id: string}[]} */ all) => (all.length === 1 ? all[0].id : undefined);
  const onlyFrom = findOnly(findFromOptions(state).filter(isPossible));
  if (!gone.from && onlyFrom !== choices.into) choices.from ??= onlyFrom;
  if (!gone.into && choices.from) {
    const onlyInto = findOnly(findIntoOptions({ ...state, choices }).filter(isPossible));
    if (isBlank(findMedium(state, onlyInto)?.savegame ?? [])) choices.into ??= onlyInto;
  }
  if (!gone.shown) choices.shown ??= choices.from ?? findMedia(state).find(({ savegame }) => hasSavegame(savegame))?.id;
  return { ...state, choices };
}

/**
 * @param {State} before
 * @param {State} state
 * @returns {State} without the choices whose files are no longer what they were
 */
function withoutLostChoices(before, state) {
  const choices = { ...state.choices };
  const gone = { ...state.gone };
  for (const name of /** @type {const} */ (["from", "into", "shown", "compared"])) {
    const id = choices[name];
    if (id === undefined || id === newDataFile) continue;
    const present = findMedium(state, id);
    if (present && !(isOutdated(present) && ["from", "into"].includes(name))) continue;
    choices[name] = undefined;
    const medium = findMedium(before, id);
    gone[name] = medium && titleOf(medium);
  }
  const from = findMedium(state, choices.from);
  if (choices.into === newDataFile && !from?.canTake) choices.into = undefined;
  if (choices.compared === choices.shown) choices.compared = undefined;
  return { ...state, choices, gone };
}

// Making and saving

/**
 * Whether what is being made, or was made, is of what is chosen.
 *
 * @param {State} state
 * @param {{from: {id: string}, into?: {id: string}}} made
 */
function isOfChoices({ choices }, { from, into }) {
  return choices.from === from.id && choices.into === (into?.id ?? newDataFile);
}

/** @param {State} state @returns {State} */
function makeAsked(state) {
  const { choices, result, jobs } = state;
  const from = findMedium(state, choices.from);
  const into = findMedium(state, choices.into);
  const concerns = findConcerns(state);
  const isChosen = from && (into || choices.into === newDataFile);
  const hasToAgree = concerns.length > 0 && choices.agreed !== keyOf(concerns);
  const isMade = result || jobs.some((job) => job.kind === "make" && isOfChoices(state, job));
  if (!isChosen || hasToAgree || isMade) return state;
  const backup = into && !isBlank(into.savegame) ? nameOfBackup(into) : undefined;
  const names = into ? { files: namesOfCopies(from, into), backup } : { files: [nameOfBackup(from)] };
  return withJob(withoutNotices(state, "notMade"), { kind: "make", from, into, names, concerns });
}

/** @param {State} state @param {string} kind @returns {State} */
function withoutNotices(state, kind) {
  return { ...state, notices: state.notices.filter((notice) => notice.kind !== kind) };
}

/** @param {State} state @param {{job: string, files: Omit<MadeFile, "isSaved">[]}} action @returns {State} */
function filesMade(state, { job: id, files }) {
  const ended = withoutJob(state, id);
  const job = state.jobs.find((other) => other.id === id);
  if (job?.kind !== "make") return state; // started over meanwhile
  if (!isOfChoices(state, job)) return withNotice(ended, { kind: "madeInVain" });
  const { from, into, names, concerns } = job;
  const hasBackup = names.backup !== undefined;
  const result = { id, from, into, concerns, hasBackup, files: files.map((file) => ({ ...file, isSaved: false })) };
  return { ...ended, result, gone: { ...ended.gone, result: undefined } };
}

/** @param {State} state @param {{job: string, error?: string, outdated: string[]}} action @returns {State} */
function makingFailed(state, { job, error, outdated }) {
  const files = markOutdated(state.files, outdated);
  const changed = files.filter(({ id }) => outdated.includes(id));
  if (!state.jobs.some(({ id }) => id === job)) return state;
  return withNotice(withoutJob({ ...state, files }, job), { kind: "notMade", error, outdated: changed });
}

/** @param {State} state @param {{result: string, index: number}} action @returns {State} */
function fileSaved(state, { result: id, index }) {
  const { result } = state;
  if (result?.id !== id) return state;
  const files = result.files.map((file, i) => (i === index ? { ...file, isSaved: true } : file));
  return { ...state, result: { ...result, files } };
}

/**
 * @param {State} before its first job has begun
 * @param {State} state
 * @returns {State} without a result, and without work, for what is no longer chosen
 */
function withoutLostResult(before, state) {
  const { result, gone } = state;
  const begun = before.jobs[0]?.id;
  const jobs = state.jobs.filter((job) => job.id === begun || job.kind !== "make" || isOfChoices(state, job));
  if (!result || isOfChoices(state, result)) return { ...state, jobs };
  const unsaved = result.files.filter(({ isSaved }) => !isSaved).map(({ name }) => isolate(name));
  return { ...state, jobs, result: undefined, gone: { ...gone, result: unsaved.join(" and ") || undefined } };
}

// Flags

/**
 * Has the flags of the shown savegames read, if those or the sources have changed.
 *
 * @param {State} state
 * @returns {State}
 */
function withFlags(state) {
  const { main, included } = findSources(state);
  const sourceIds = [...main, ...included].map((file) => file?.id);
  const shown = main.every(Boolean) ? [state.choices.shown, state.choices.compared] : [];
  const media = shown.flatMap((id) => findMedium(state, id) ?? []);
  const keys = media.map(({ id }) => [id, ...sourceIds].join());
  const isWanted = (/** @type {{key: string}} */ { key }) => keys.includes(key);
  if (state.flagReports.length === keys.length && state.flagReports.every(isWanted)) return state;
  const jobs = state.jobs.filter((job, i) => i === 0 || job.kind !== "readFlags" || isWanted(job));
  let next = { ...state, jobs, flagReports: state.flagReports.filter(isWanted) };
  for (const [i, key] of keys.entries()) {
    if (next.flagReports.some((report) => report.key === key)) continue;
    next = withJob(next, { kind: "readFlags", key, medium: media[i], main, included });
    next = { ...next, flagReports: [...next.flagReports, { key, medium: media[i].id, isReading: true }] };
  }
  return next;
}

/**
 * @param {State} state
 * @param {{job: string, key: string} & FlagReading} action
 * @returns {State}
 */
function flagsRead(state, { job, key, ...read }) {
  if (!state.jobs.some(({ id }) => id === job)) return state;
  const flagReports = state.flagReports.map((report) =>
    report.key === key ? { ...report, isReading: false, ...read } : report,
  );
  return withoutJob({ ...state, flagReports }, job);
}

/**
 * A job that failed in a way that nothing provides for.
 *
 * @param {State} state
 * @param {{job: string, error: string}} action
 * @returns {State}
 */
function jobFailed(state, { job: id, error }) {
  const job = state.jobs.find((other) => other.id === id);
  if (!job) return state;
  if (job.kind !== "readFlags") return withNotice(withoutJob(state, id), { kind: "failed", error });
  return flagsRead(state, { job: id, key: job.key, output: error, missing: [], standIns: [], isUnclear: false });
}

/** What each event does. "Chosen" and "Asked" are the person's, the others are those of the page's work. */
const changes = {
  /** @param {State} state @param {{given: GivenFile[], leftOut: number}} action */
  filesGiven(state, { given, leftOut }) {
    /** @type {State} */
    let next = { ...state, notices: [], doubles: [], gone: { ...state.gone, result: undefined } };
    if (given.length === 0) next = withNotice(next, { kind: "nothingGiven" });
    if (leftOut > 0) next = withNotice(next, { kind: "leftOut", count: leftOut });
    return given.length === 0 ? next : withJob(next, { kind: "examine", given });
  },
  /** @param {State} state @param {{error: string}} action */
  givingFailed: (state, { error }) => withNotice(state, { kind: "failed", error }),
  filesExamined,
  /** @param {State} state */
  doublesAdded(state) {
    const added = state.doubles.reduce(addFile, { ...state, doubles: [] });
    const batches = [...new Set(state.doubles.map(({ batch }) => batch))];
    return batches.reduce((next, batch) => withGuesses(state, next, batch), added);
  },
  filesRemoved,
  /** @param {State} state */
  startedOver: ({ log, lastId }) => ({ ...emptyState, log, lastId }),

  /** @param {State} state @param {{file: string, pair?: string, disc: DiscNumber}} action */
  discChosen(state, { file, pair, disc }) {
    if (!state.files.some(({ id }) => id === file)) return state;
    const { id, state: next } = withId(state);
    return { ...next, pairs: placeDisc(next.pairs, file, pair ?? id, disc) };
  },
  /** @param {State} state @param {{file: string}} action */
  discTakenOut: (state, { file }) => ({ ...state, pairs: replaceInPairs(state.pairs, file) }),
  /** @param {State} state @param {{pair: string}} action */
  discsExchanged: (state, { pair }) => ({ ...state, pairs: exchangeDiscs(state.pairs, pair) }),
  /** @param {State} state @param {{file: string, role?: SourceRole}} action */
  roleChosen(state, { file, role }) {
    if (!state.files.some(({ id }) => id === file)) return state;
    return { ...state, sources: giveRole(state.sources, file, role) };
  },

  fromChosen,
  intoChosen: choose("into", findIntoOptions),
  shownChosen: choose("shown", findMedia),
  comparedChosen: choose("compared", findMedia),
  /** @param {State} state @param {{isAgreed: boolean}} action */
  agreementChosen(state, { isAgreed }) {
    const agreed = isAgreed ? keyOf(findConcerns(state)) : undefined;
    return { ...state, choices: { ...state.choices, agreed } };
  },
  makeAsked,
  filesMade,
  makingFailed,
  fileSaved,
  flagsRead,
  jobFailed,
  /** @param {State} state @param {{text: string}} action */
  searchTyped: (state, { text }) => ({ ...state, search: text }),
  /** @param {State} state @param {{id: string}} action */
  noticeClosed: (state, { id }) => ({ ...state, notices: state.notices.filter((notice) => notice.id !== id) }),
  /** @param {State} state @param {{text: string}} action */
  progressMade: (state, { text }) => (state.jobs.length > 0 ? { ...state, progress: text } : state),
  /** @param {State} state @param {{entry: LogEntry}} action */
  programRan: (state, { entry }) => ({ ...state, log: withEntry(state.log, entry) }),
};

/**
 * What happened, with what `changes` takes.
 * @typedef {{[Type in keyof typeof changes]: Parameters<(typeof changes)[Type]> extends [State, infer Facts]
 *   ? {type: Type} & Facts
 *   : {type: Type}}[keyof typeof changes]} Action
 */

/**
 * The state in which what has not changed is the same object as before: by that the views know what to show anew.
 *
 * @param {State} before
 * @param {State} state
 * @returns {State}
 */
function withSameParts(before, state) {
  /** @template {"pairs" | "choices" | "gone" | "jobs"} Name @param {Name} name @returns {State[Name]} */
  function keep(name) {
    const [old, now] = [before[name], state[name]].map((part) => /** @type {Record<string, unknown>} */ (part));
    const keys = [...new Set([...Object.keys(old), ...Object.keys(now)])];
    return keys.every((key) => old[key] === now[key]) ? before[name] : state[name];
  }
  return { ...state, pairs: keep("pairs"), choices: keep("choices"), gone: keep("gone"), jobs: keep("jobs") };
}

/**
 * The state after an event. Afterwards, whatever names files that are no longer what they were is gone.
 *
 * @param {State} state
 * @param {Action} action
 * @returns {State}
 */
export function update(state, action) {
  const change = /** @type {(state: State, action: Action) => State} */ (changes[action.type]);
  const changed = change(state, action);
  if (changed === state) return state;
  const kept = withoutLostChoices(state, { ...changed, pairs: withoutEmptyPairs(changed.pairs) });
  const chosen = withoutLostResult(state, chooseOnlyPossible(kept));
  const isAgreed = chosen.choices.agreed === keyOf(findConcerns(chosen));
  const agreed = isAgreed ? chosen.choices.agreed : undefined;
  return withSameParts(state, withFlags({ ...chosen, choices: { ...chosen.choices, agreed } }));
}
