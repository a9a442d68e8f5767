// Files and states of the page, as tests write them.
import { emptyState, update } from "../../../web/model/update.js";

let lastId = 0;

function contentsOf(path, { holds, canTake = true, refused, content, money = "40" }) {
  const words = holds.split(" "); // one for both discs, or one for each
  const fields = new Map([["money", money]]);
  const bytesOf = (state) => (state === "none" ? [0, 0] : [0, content]);
  const disc = (state) => ({ state, damagedPages: state === "damaged" ? [1] : [], fields, bytes: bytesOf(state) });
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

/** The state after files were given together and examined. */
export function withFiles(state, ...files) {
  const given = update(state, { type: "filesGiven", given: files, leftOut: 0 });
  const { id: job } = given.jobs.findLast(({ kind }) => kind === "examine");
  return update(given, { type: "filesExamined", job, files, outdated: [] });
}

export const stateWith = (...files) => withFiles(emptyState, ...files);
