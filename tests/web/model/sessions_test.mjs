// What the core makes of what a person does, in the sessions beside this file. A line that begins with "$" is an event, and
// "$ look" prints what the page shows then. Files are called by their titles, media like "disc2.d64 + disc3.d64". In "add",
// brackets say what is special about a file, and how often it is written anew.
import assert from "node:assert/strict";
import { readdirSync, readFileSync, writeFileSync } from "node:fs";
import test from "node:test";
import { countFound, groupFiles } from "../../../web/model/cards.js";
import { findConcerns } from "../../../web/model/concerns.js";
import { findFromOptions, findIntoOptions, findMedia } from "../../../web/model/media.js";
import { findSources } from "../../../web/model/sources.js";
import { emptyState, update } from "../../../web/model/update.js";
import { file } from "./states.mjs";

const nameOf = (medium) => medium.files.map(({ title }) => title).join(" + ");

function find(all, name, nameIn) {
  const found = all.find((each) => nameIn(each) === name);
  if (!found) throw new Error(`There is no ${name}.`);
  return found;
}
const fileIn = (state, title) => find(state.files, title, (each) => each.title).id;
const mediumIn = (state, name) => (name === "data" ? name : find(findMedia(state), name, nameOf).id);
const jobIn = (state, wanted) => find(state.jobs, wanted, ({ kind }) => kind);
function pairIn(state, title) {
  const id = fileIn(state, title);
  return state.pairs.find((pair) => [2, 3].some((disc) => pair[disc]?.file === id)).id;
}

/** Files like "game.reu (holds damaged, modified 2), my.dat". */
function readFiles(text) {
  return [...text.matchAll(/([^,(]+?) *(?:\(([^)]*)\))?(?:, |$)/g)].map(([, path, facts = ""]) => {
    const words = facts.split(", ").map((fact) => [fact.split(" ")[0], fact.split(" ").slice(1).join(" ")]);
    const { modified, size, canTake, ...others } = Object.fromEntries(words);
    const numbers = { modified: Number(modified ?? 1), size: Number(size ?? 512), canTake: canTake !== "no" };
    return file(path, { ...numbers, ...others });
  });
}

/** What each event is; several actions, if it says so. */
const events = {
  give: (_, text) => ({ type: "filesGiven", given: text === "" ? [] : readFiles(text), leftOut: 0 }),
  /** Meanwhile it was found that files of these titles have changed. */
  examined(state, text) {
    const { id: job, given } = state.jobs.findLast(({ kind }) => kind === "examine");
    const outdated = text === "" ? [] : text.split(", ").map((title) => fileIn(state, title));
    return { type: "filesExamined", job, files: given, outdated };
  },
  doubles: () => ({ type: "doublesAdded" }),
  remove: (state, title) => ({ type: "filesRemoved", ids: [fileIn(state, title)] }),
  from: (state, name) => ({ type: "fromChosen", medium: mediumIn(state, name) }),
  into: (state, name) => ({ type: "intoChosen", medium: mediumIn(state, name) }),
  show: (state, name) => ({ type: "shownChosen", medium: mediumIn(state, name) }),
  /** A file becomes disc 2 or 3 of the pair with another file, or of a new pair. */
  disc(state, text) {
    const [, disc, title, other] = /^(\d) (.*?)(?: beside (.*))?$/.exec(text);
    return { type: "discChosen", disc: Number(disc), file: fileIn(state, title), pair: other && pairIn(state, other) };
  },
  apart: (state, title) => ({ type: "discTakenOut", file: fileIn(state, title) }),
  swap: (state, title) => ({ type: "discsExchanged", pair: pairIn(state, title) }),
  role(state, text) {
    const [title, role] = text.split(" as ");
    return { type: "roleChosen", file: fileIn(state, title), role };
  },
  agree: () => ({ type: "agreementChosen", isAgreed: true }),
  make: () => ({ type: "makeAsked" }),
  made(state) {
    const files = [{ name: "made", size: 1, changedBytes: 1, tailSize: 0 }];
    return { type: "filesMade", job: jobIn(state, "make").id, files };
  },
  save: ({ result }) => ({ type: "fileSaved", result: result.id, index: 0 }),
  "flags-read"(state, name) {
    const { id: job, key } = jobIn(state, "readFlags");
    return { type: "flagsRead", job, key, flags: name, output: "", missing: [], standIns: [], isUnclear: false };
  },
  "start-over": () => ({ type: "startedOver" }),
};

const titlesOf = (files) => files.map((each) => each?.title ?? "–").join(", ");
const inOrder = (lines) => Object.entries(lines).flatMap(([what, text]) => (text ? `${what}: ${text}` : []));

function describePair(state, pair) {
  const inWords = (place) =>
    place ? `${state.files.find(({ id }) => id === place.file).title} (${place.grounds})` : "–";
  return `${inWords(pair[2])} + ${inWords(pair[3])}`;
}

function describeChoice(state, name) {
  if (state.gone[name]) return `gone, was ${state.gone[name]}`;
  const medium = findMedia(state).find(({ id }) => id === state.choices[name]);
  return medium ? nameOf(medium) : state.choices[name];
}

function describeConcern({ kind, disc, page, file: about }) {
  return [kind, disc, page, about?.title].filter((part) => part !== undefined).join(" ");
}

function describeResult({ result, gone }) {
  if (!result) return gone.result && `gone, was ${gone.result}`;
  const into = result.into ? nameOf(result.into) : "data";
  return `${nameOf(result.from)} in ${into}, ${result.files[0].isSaved ? "saved" : "not saved"}`;
}

/** What the page shows, a line each, without what is empty. */
function look(state) {
  const concerns = findConcerns(state).map(describeConcern).join(", ");
  return inOrder({
    pairs: state.pairs.map((pair) => describePair(state, pair)).join(", "),
    from: describeChoice(state, "from"),
    into: describeChoice(state, "into"),
    concerns: concerns && `${concerns}${state.choices.agreed ? " (agreed)" : ""}`,
    notices: state.notices.map(({ kind }) => kind).join(", "),
    jobs: state.jobs.map(({ kind, medium }) => [kind, medium && nameOf(medium)].filter(Boolean).join(" ")).join(", "),
    result: describeResult(state),
    flags: state.flagReports.map(({ flags, isReading }) => (isReading ? "reading" : flags)).join(", "),
  });
}

/** What the list of files shows. */
function list(state) {
  const { media, free, sources, refused } = groupFiles(state);
  const { main, included } = findSources(state);
  return inOrder({
    cards: media.map((card) => card.file?.title ?? "pair").join(", "),
    free: titlesOf(free),
    texts: titlesOf(sources),
    sources: main.some(Boolean) && `${titlesOf(main)}; included: ${titlesOf(included)}`,
    refused: titlesOf(refused),
    found: Object.entries(countFound(state)).map((entry) => entry.join(" ")).join(", "), // prettier-ignore
  });
}

/** What can be chosen, and why not. */
function options(state) {
  const inWords = (all) => all.map((each) => nameOf(each) + (each.refusal ? ` (${each.refusal})` : "")).join(", ");
  return inOrder({ "from options": inWords(findFromOptions(state)), "into options": inWords(findIntoOptions(state)) });
}

const printing = { look, list, options };

/** The lines of a session as they are now. */
function replay(session) {
  let state = emptyState;
  const lines = [];
  for (const line of session.filter((each) => each.startsWith("$ "))) {
    const [, name, text] = /^\$ (\S+) ?(.*)$/.exec(line);
    lines.push(line);
    const known = { ...events, ...printing, add: true, new: true, anew: true };
    if (!known[name]) throw new Error(`Not an event: ${line}`);
    if (name === "new") state = emptyState;
    else if (printing[name]) lines.push(...printing[name](state));
    else if (name === "add" || name === "anew") {
      state = update(state, events.give(state, text));
      state = update(state, events.examined(state, name === "anew" ? text.replace(/ \(.*/, "") : ""));
    } else state = update(state, events[name](state, text));
  }
  return lines;
}

const folder = new URL(".", import.meta.url);
for (const name of readdirSync(folder).filter((each) => each.endsWith(".txt"))) {
  const path = new URL(name, folder);
  const blocks = readFileSync(path, "utf8").trimEnd().split(/\n\n(?=# )/); // prettier-ignore
  const sessions = blocks.map((block) => block.split("\n"));
  for (const [title, ...session] of sessions) {
    test(title.slice(2), () => assert.deepEqual(replay(session), session, `in ${path.pathname}`));
  }
  if (process.env.UPDATE_EXPECTED) {
    writeFileSync(
      path,
      sessions.map(([title, ...session]) => [title, ...replay(session)].join("\n")).join("\n\n") + "\n",
    );
  }
}
