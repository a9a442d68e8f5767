// What the person has to agree to before anything is made: what is wrong with the savegame, and what nobody can know about
// the order of floppy images.
import { findRemarks } from "./compare.js";
import { hasTwin } from "./pairs.js";
import { readDiscName } from "./names.js";
import { findMedium, newDataFile } from "./media.js";

/** @import { Concern, FileFacts, Medium, State } from "./types.js" */

/** @param {Medium} medium @returns {Concern[]} */
function findDamages(medium) {
  /** @type {Concern[]} */
  const different = medium.pair && findRemarks(medium.savegame).length > 0 ? [{ kind: "different", medium }] : [];
  return different.concat(
    medium.savegame.flatMap(({ state, damagedPages }, i) => {
      const disc = i + 2;
      if (state === "none") return { kind: "halfEmpty", medium, disc };
      return damagedPages.map((page) => /** @type {Concern} */ ({ kind: "damaged", medium, disc, page }));
    }),
  );
}

/**
 * @param {FileFacts[]} files all
 * @param {Medium} medium
 * @returns {Concern[]}
 */
function findDoubts(files, medium) {
  const { pair, files: discs } = medium;
  if (!pair) return [];
  /** @type {Concern[]} */
  const contradictions = discs.flatMap((file, i) => {
    const said = readDiscName(file.path).number;
    const disc = i + 2;
    return said === undefined || said === disc ? [] : { kind: "contradiction", medium, disc, file, said };
  });
  const grounds = [pair[2]?.grounds, pair[3]?.grounds];
  const areTogether = discs[0].batch === discs[1].batch;
  if (grounds.includes("order")) return [...contradictions, { kind: "order", medium }];
  const renewed = discs.find((_, i) => grounds[i] === "anew");
  if (renewed && !areTogether) return [...contradictions, { kind: "anew", medium, file: renewed }];
  if (grounds.includes("chosen") || areTogether) return contradictions;
  const twin = discs.find((file) => hasTwin(files, file));
  return twin ? [...contradictions, { kind: "twins", medium, file: twin }] : contradictions;
}

/**
 * What there is to agree to with the present choices.
 *
 * @param {State} state
 * @returns {Concern[]} nothing if something is not chosen yet
 */
export function findConcerns(state) {
  const { from: fromId, into: intoId } = state.choices;
  const from = findMedium(state, fromId);
  const into = findMedium(state, intoId);
  if (!from || (!into && intoId !== newDataFile)) return [];
  return [...findDamages(from), ...[from, into].flatMap((medium) => (medium ? findDoubts(state.files, medium) : []))];
}

/** A text that is the same only for the same concerns about the same files. @param {Concern[]} concerns */
export function keyOf(concerns) {
  return concerns.map(({ kind, medium, disc, page, file }) => [kind, medium.id, disc, page, file?.id].join()).join(" ");
}
