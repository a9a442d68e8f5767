// The names of the files that the page makes: they say what is in them and where it came from, and never grow.
import { lastName, withoutAdditions } from "./names.js";

/** @import { Medium } from "./types.js" */

const partLimit = 80; // bytes in UTF-8, so that a name of two parts has less than the 255 of file systems

/** The name without its extension, and that with its dot. @param {string} name */
function splitExtension(name) {
  const [, stem = "", extension = ""] = /^(.*?)(\.[^.]*)?$/s.exec(name) ?? [];
  return { stem, extension };
}

/**
 * A part of a name without what some system does not allow in names, and without what changes their direction.
 *
 * @param {string} text
 */
function toPart(text) {
  const allowed = text
    .replace(/[\u200e\u200f\u202a-\u202e\u2066-\u2069\ufeff]/g, "")
    .replace(/[\p{Cc}<>:"/\\|?*]/gu, "_")
    .replace(/^[\s.]+|[\s.]+$/g, "");
  let part = "";
  for (const character of allowed) {
    if (new TextEncoder().encode(part + character).length > partLimit) break;
    part += character;
  }
  return part.trim() || "file";
}

/** @param {number} time */
function formatTime(time) {
  const date = new Date(time);
  const pad = (/** @type {number} */ number) => String(number).padStart(2, "0");
  const day = [date.getFullYear(), pad(date.getMonth() + 1), pad(date.getDate())].join("-");
  return `${day} ${pad(date.getHours())}.${pad(date.getMinutes())}`;
}

/**
 * Where a savegame comes from: the file and when it was written, so that later savegames have other names. A backup has
 * that in its own name.
 *
 * @param {Medium} medium
 */
function originOf({ files }) {
  const [{ name, modified }] = files;
  const { stem } = splitExtension(name);
  const backup = /^backup of (.*, \d{4}-\d\d-\d\d \d\d\.\d\d)/s.exec(stem)?.[1];
  return toPart(backup ?? `${withoutAdditions(stem)}, ${formatTime(modified)}`);
}

/** The name of a data file with the savegame of a medium. @param {Medium} medium */
export function nameOfBackup(medium) {
  return `backup of ${originOf(medium)}.dat`;
}

/**
 * The names of the new files: those of a medium, with the savegame of another one.
 *
 * @param {Medium} from
 * @param {Medium} into
 */
export function namesOfCopies(from, into) {
  const isSame = new Set(into.files.map(({ path }) => lastName(path).toLowerCase())).size < into.files.length;
  return into.files.map(({ path, name }, i) => {
    const { stem, extension } = splitExtension(isSame ? lastName(path) : name);
    const which = isSame ? ` disc ${i + 2}` : "";
    const ending = extension === "" ? "" : `.${toPart(extension)}`;
    return `${toPart(withoutAdditions(stem))}${which} (savegame of ${originOf(from)})${ending}`;
  });
}
