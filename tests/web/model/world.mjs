// Random sequences of actions: a person who does anything at any time, files that collide in their names and change on the
// disk, and work that ends late or fails.
import fc from "fast-check";
import { findFromOptions, findIntoOptions, findMedia, isPossible } from "../../../web/model/media.js";
import { emptyState } from "../../../web/model/update.js";
import { file } from "./states.mjs";

/** Sets of files on the disk. Some have equal paths, which begin at the folder that is given. */
const sets = [
  [["disc2.d64"], ["disc3.d64"]],
  [["disc2.d64"], ["disc3.d64"]],
  ["disc2.d64", "disc3.d64"].map((path) => [path, { content: "same" }]),
  [["a/disc2.d64"], ["a/disc3.d64"]],
  [["b/disc2.d64"], ["b/disc3.d64", { holds: "none" }]],
  [["Disk 1 of 3.d64"], ["Disk 2 of 3.d64"], ["Disk 3 of 3.d64"]],
  [["one.d64"], ["other.d64"], ["blank.d64", { holds: "none" }]],
  [["game.reu"], ["game.reu", { holds: "good", canTake: false }]],
  [["old.reu", { holds: "damaged" }]],
  [["my.dat"], ["my.dat", { holds: "damaged" }], ["half.dat", { holds: "good none" }], ["no.dat", { holds: "none" }]],
  [["scr_flags.asm"], ["scr_collectableids.asm"], ["scr_globaldefines.asm"], ["i.inc"], ["lib/scr_flags.asm"]],
  ["cut.d64", "empty.inc"].map((path) => [path, { refused: "empty", size: 0 }]),
];

/** What becomes of a file by one change after the other. */
const changes = [{ holds: "damaged" }, { refused: "unreadable" }, { holds: "good" }];

/** A page with its disk and its work, and what it showed before. */
export class World {
  state = emptyState;
  read = new Map(); // the file on the disk and its version then, by ids of files
  seen = { files: [], media: [], pairs: [] };
  begun = new Set(); // ids of jobs
  running = []; // jobs that have begun and not ended

  /** @param disk paths of files, each with facts about it */
  constructor(disk) {
    this.disk = disk.map(([path, facts]) => ({ path, facts, version: 0 }));
  }

  give(index) {
    const entry = this.disk[index % this.disk.length];
    const { path, facts, version } = entry;
    const given = file(path, { ...(changes[version - 1] ?? facts), modified: version });
    this.read.set(given.id, { entry, version });
    return given;
  }

  get outdated() {
    const isOutdated = ({ entry, version }) => version !== entry.version;
    return this.state.files.map(({ id }) => id).filter((id) => isOutdated(this.read.get(id)));
  }

  enter(state) {
    this.state = state;
    const [job] = state.jobs;
    if (job && !this.begun.has(job.id)) this.running.push(job);
    if (job) this.begun.add(job.id);
    for (const [what, all] of Object.entries({ files: state.files, pairs: state.pairs, media: findMedia(state) })) {
      this.seen[what].push(...all.filter(({ id }) => !this.seen[what].some((each) => each.id === id)));
    }
  }
}

/** An id of what is shown or, sometimes, of what was: a click can come just before the page shows what has changed. */
function pick(now, earlier, number) {
  const list = number % 11 === 0 ? earlier : now;
  return list[Math.floor(number / 11) % list.length]?.id;
}
const ofKind = (files, kind) => files.filter(({ contents }) => contents.kind === (kind ?? contents.kind));
const pickFile = ({ state, seen }, number, kind) => pick(ofKind(state.files, kind), ofKind(seen.files, kind), number);
const pickPair = ({ state, seen }, number) => pick(state.pairs, seen.pairs, number);
const pickMedium = ({ state, seen }, number, findOptions = findMedia) =>
  pick(findOptions(state).filter(isPossible), seen.media, number);

export const nameOfMade = (from, into) => `${from} in ${into}`;

/** How a job ends. */
function end(job, world, number) {
  const { id, kind, key, from, into } = job;
  if (number % 11 === 0) return { type: "jobFailed", job: id, error: "It stopped." };
  if (kind === "examine") return { type: "filesExamined", job: id, files: job.given, outdated: world.outdated };
  if (kind === "readFlags") return { type: "flagsRead", job: id, key, output: "", missing: [] };
  const outdated = number % 3 === 0 ? world.outdated : [];
  if (number % 5 === 0) return { type: "makingFailed", job: id, error: "It is not equal.", outdated };
  const made = { name: nameOfMade(from.id, into?.id ?? "data"), size: 1, changedBytes: 1, tailSize: 0 };
  return { type: "filesMade", job: id, files: [made] };
}

/** What each event is in a world, by two random numbers; nothing if it cannot happen. */
const events = {
  filesGiven: (world, a, b) => ({ given: Array.from({ length: b % 7 }, (_, i) => world.give(a + i)), leftOut: b % 2 }),
  jobEnded(world, a, b) {
    const [job] = world.running.splice(a % Math.max(world.running.length, 1), 1);
    return job && end(job, world, b);
  },
  changedOnDisk: (world, a) => void ++world.disk[a % world.disk.length].version,
  doublesAdded: () => ({}),
  filesRemoved: (world, a, b) => ({ ids: [a, b].slice(b % 2).map((number) => pickFile(world, number)) }),
  startedOver: (_, a) => a % 10 === 0 && {},
  discChosen(world, a, b) {
    const pair = b % 5 === 0 ? undefined : pickPair(world, b); // a new one, or one that is there
    return { file: pickFile(world, a, "floppy"), pair, disc: 2 + (b % 2) };
  },
  discTakenOut: (world, a) => ({ file: pickFile(world, a) }),
  discsExchanged: (world, a) => ({ pair: pickPair(world, a) }),
  roleChosen: (world, a, b) => ({ file: pickFile(world, a, "source"), role: [undefined, "scr_flags.asm"][b % 2] }),
  fromChosen: (world, a) => ({ medium: pickMedium(world, a, findFromOptions) }),
  intoChosen: (world, a, b) => ({ medium: b % 5 === 0 ? "data" : pickMedium(world, a, findIntoOptions) }),
  shownChosen: (world, a) => ({ medium: pickMedium(world, a) }),
  comparedChosen: (world, a) => ({ medium: pickMedium(world, a) }),
  agreementChosen: (_, a) => ({ isAgreed: a % 4 !== 0 }),
  makeAsked: () => ({}),
  fileSaved: ({ state }) => ({ result: state.result?.id ?? "1", index: 0 }),
};

/** The actions of a sequence, each made when the world is as the earlier ones have left it. */
export function* actionsIn(world, sequence) {
  for (const [event, a, b] of sequence) {
    const fields = events[event](world, a, b);
    if (fields) yield { type: event, ...fields };
  }
}

const often = { filesGiven: 3, jobEnded: 5, fromChosen: 2, intoChosen: 3, agreementChosen: 3, makeAsked: 3 };
const eventNames = Object.keys(events).flatMap((name) => Array(often[name] ?? 1).fill(name));
const step = fc.tuple(fc.constantFrom(...eventNames), fc.nat(9999), fc.nat(9999));
const allGiven = [["filesGiven", 0, 6], ["jobEnded", 0, 1]]; // prettier-ignore

export const sequences = fc
  .tuple(fc.constantFrom(allGiven, []), fc.array(step, { minLength: 20, maxLength: 60, size: "max" }))
  .map((parts) => parts.flat());

export const disks = fc.shuffledSubarray(sets, { minLength: 2, maxLength: 4 }).map((chosen) => chosen.flat());
