// What the names of files say, and names that no other file has.

/** The name of the data file in every run of the program; no other file has it. */
export const dataFileName = "zarnis-savegame.dat";

/**
 * A name without extension, and without what this page or a browser has added: "zarnis" of "zarnis (savegame of x) (1)".
 *
 * @param {string} stem
 */
export function withoutAdditions(stem) {
  return stem.replace(/ \(\d+\)$/, "").replace(/ \(savegame of .*$/s, "");
}

/**
 * What the name of a floppy image says: its number, if any, and the `series`, which is the rest of the path. The discs of
 * one game have names of one series.
 *
 * @param {string} path
 * @returns {{number?: number, series: string}}
 */
export function readDiscName(path) {
  const [, folder = "", name = ""] = /^(.*\/)?(.*?)(?:\.[^.]*)?$/s.exec(path.toLowerCase()) ?? [];
  const stem = withoutAdditions(name);
  const additions = name.slice(stem.length); // a copy belongs to other copies
  const numbers = [...stem.matchAll(/(dis[ck]|side|^|\D)[\s_.-]*([1-9])(?!\d)/g)];
  const after = (/** @type {RegExp} */ word) => numbers.find(([text]) => word.test(text));
  const best = after(/^dis[ck]/) ?? after(/^side/) ?? numbers.at(-1);
  if (!best) return { series: path.toLowerCase() };
  const at = best.index + best[0].length - 1;
  return { number: Number(best[2]), series: `${folder}${stem.slice(0, at)}#${stem.slice(at + 1)}${additions}` };
}

/** @param {string} path */
export function folderOf(path) {
  return path.slice(0, path.lastIndexOf("/") + 1);
}

/** @param {string} path */
export function lastName(path) {
  return path.slice(path.lastIndexOf("/") + 1);
}

/** The name without its extension, and that with its dot. @param {string} name */
export function splitExtension(name) {
  const [, stem = "", extension = ""] = /^(.*?)(\.[^.]*)?$/s.exec(name) ?? [];
  return { stem, extension };
}

/** In small letters, without its dot. @param {string} name */
export function extensionOf(name) {
  return splitExtension(lastName(name)).extension.slice(1).toLowerCase();
}

/** As many characters of a text as have room in UTF-8. @param {string} text @param {number} limit in bytes */
export function cutToBytes(text, limit) {
  let cut = "";
  let size = 0;
  for (const character of text) {
    size += new TextEncoder().encode(character).length;
    if (size > limit) break;
    cut += character;
  }
  return cut;
}

/** The last name of a path as the program can have it, with room for additions. @param {string} path */
export function toProgramName(path) {
  const { stem, extension } = splitExtension(lastName(path).replace(/[\0\p{Cs}]/gu, "_"));
  const name = cutToBytes(stem, 200) + cutToBytes(extension, 40); // file systems have 255
  return /^\.{0,2}$/.test(name) ? "file" : name;
}

const rightToLeft = /[\u0590-\u08ff\ufb1d-\ufdff\ufe70-\ufefc\u{10800}-\u{10fff}\u{1e800}-\u{1efff}]/u;
const isolates = /[\u2068\u2069]/g;

/** A name that does not change the direction of the text around it. @param {string} name */
export function isolate(name) {
  return rightToLeft.test(name) ? `\u2068${name}\u2069` : name;
}

/**
 * A path as it is shown: what cannot be seen, or would change how the rest is read, is made visible.
 *
 * @param {string} path
 */
export function toTitle(path) {
  const visible = path
    .replace(/\p{Cc}/gu, (control) => (control < " " ? String.fromCodePoint(0x2400 + control.charCodeAt(0)) : "\ufffd"))
    .replace(/[\u061c\u200b-\u200f\u2028-\u202e\u2060-\u2069\ufeff\p{Cs}]/gu, "\ufffd")
    .replace(/^ | $/g, "\u2420");
  return isolate(visible);
}

/**
 * The text, with a number if it is taken already.
 *
 * @param {string} text
 * @param {string[]} taken
 * @param {(number: number) => string} withNumber
 */
export function uniqueText(text, taken, withNumber) {
  let unique = text;
  for (let number = 2; taken.includes(unique); ++number) unique = withNumber(number);
  return unique;
}

/** The name with something before its extension. @param {string} name @param {string} addition */
export function insertBeforeExtension(name, addition) {
  const { stem, extension } = splitExtension(name);
  return `${stem}${addition}${extension}`;
}

/**
 * Titles without the folders that all of them have, and without the middle of very long names, as long as they differ.
 *
 * @param {string[]} titles
 * @returns {Map<string, string>} the short one of each
 */
export function shortenTitles(titles) {
  const limit = 90; // characters
  const folders = titles.map((title) => title.replace(isolates, "").split("/").slice(0, -1));
  const [first = []] = folders;
  const others = first.findIndex((name, depth) => folders.some((folder) => folder[depth] !== name));
  const depth = others < 0 ? first.length : others; // of the folders that all have
  /** @param {string} title */
  function shorten(title) {
    const text = title.replace(isolates, "").split("/").slice(depth).join("/");
    const characters = [...text];
    if (characters.length <= limit) return isolate(text);
    return isolate(`${characters.slice(0, limit / 2).join("")}…${characters.slice(-limit / 2).join("")}`);
  }
  const short = titles.map(shorten);
  const isUnique = (/** @type {string} */ text) => short.filter((other) => other === text).length === 1;
  return new Map(titles.map((title, i) => [title, isUnique(short[i]) ? short[i] : title]));
}
