// How the files are grouped in the list, and what was found among them.
import { findMedia, hasSavegame, mediumOfFile } from "./media.js";
import { countDifferentBytes } from "./compare.js";
import { discNumbers, findFreeFloppies, suggestedNumber } from "./pairs.js";

/** @import { FileFacts, Pair, State } from "./types.js" */

/** @typedef {{id: string, pair?: Pair, file?: FileFacts}} Card a pair, or another medium */

/**
 * The cards of pairs and other media, those with a savegame first; the floppy images in no pair; texts; and what cannot be
 * used.
 *
 * @param {Pick<State, "files" | "pairs">} state
 */
export function groupFiles({ files, pairs }) {
  const ofKind = (/** @type {string} */ kind) => files.filter(({ contents }) => contents.kind === kind);
  const discOf = (/** @type {string | undefined} */ id) => {
    const contents = files.find((file) => file.id === id)?.contents;
    return contents?.kind === "floppy" ? [contents.disc] : [];
  };
  /** @param {Card} card */
  function isFilled({ pair, file }) {
    if (pair) return hasSavegame(discNumbers.flatMap((disc) => discOf(pair[disc]?.file)));
    return file !== undefined && hasSavegame(mediumOfFile(file)?.savegame ?? []);
  }
  /** @type {Card[]} */
  const cards = [
    ...pairs.map((pair) => ({ id: `pair ${pair.id}`, pair })),
    ...files.filter((file) => mediumOfFile(file)).map((file) => ({ id: file.id, file })),
  ];
  return {
    media: [...cards.filter(isFilled), ...cards.filter((card) => !isFilled(card))],
    free: findFreeFloppies(files, pairs),
    sources: ofKind("source"),
    refused: ofKind("refused"),
  };
}

/**
 * How many there are of what: savegames, and how many of them are not the same as another one; empty places for one; discs
 * whose other disc is missing; and files that cannot be used.
 *
 * @param {Pick<State, "files" | "pairs">} state
 */
export function countFound(state) {
  const usable = findMedia(state).filter(({ isSame }) => !isSame);
  const saved = usable.map(({ savegame }) => savegame).filter(hasSavegame);
  const isFirst = saved.map(
    (savegame, i) => saved.findIndex((other) => countDifferentBytes(savegame, other) === 0) === i,
  );
  const { free, refused } = groupFiles(state);
  const halves = state.pairs.filter((pair) => !pair[2] || !pair[3]);
  return {
    savegames: saved.length,
    different: isFirst.filter(Boolean).length,
    places: usable.filter(({ savegame, canTake }) => canTake && !hasSavegame(savegame)).length,
    single: free.filter((file) => suggestedNumber(file) !== "other").length + halves.length,
    refused: refused.length,
  };
}
