// The names of the files that the page makes: they say what is in them and where it came from, and never grow.
import { cutToBytes, folderOf, lastName, splitExtension, withoutAdditions } from "./names.js";

/** @import { Medium } from "./types.js" */

const partLimit = 80; // bytes in UTF-8, so that a name of two parts has less than the 255 of file systems

/**
 * A part of a name without what some system does not allow in names, and without what changes their direction.
 *
 * @param {string} text
 */
function toPart(text) {
  const allowed = text
    .replace(/[\u061c\u200b-\u200f\u2028-\u202e\u2060-\u2069\ufeff]/g, "")
    .replace(/[\p{Cc}\p{Cs}<>:"/\\|?*]/gu, "_")
    .replace(/^[\s.]+|[\s.]+$/g, "");
  return cutToBytes(allowed, partLimit).trim() || "file";
}

/** @param {number} time */
function formatTime(time) {
  const date = new Date(time);
  const pad = (/** @type {number} */ number) => String(number).padStart(2, "0");
  const day = [date.getFullYear(), pad(date.getMonth() + 1), pad(date.getDate())];
  return `${day.join("-")} ${[date.getHours(), date.getMinutes(), date.getSeconds()].map(pad).join("-")}`;
}

/**
 * What the names of a medium's files have in common: "zarnis" of "zarnis2.d64" and "zarnis3.d64". If that is nothing, it is
 * the name of their folder.
 *
 * @param {Medium} medium
 */
function commonName({ files }) {
  const [first, other] = files.map(({ name }) => withoutAdditions(splitExtension(name).stem));
  if (other === undefined) return first;
  const [small, otherSmall] = [first.toLowerCase(), other.toLowerCase()];
  let length = 0;
  while (length < first.length && small[length] === otherSmall[length]) ++length;
  const common = first.slice(0, length).replace(/[\s([_.-]*(dis[ck]|side)?[\s([_.-]*$/i, "");
  const [folder, otherFolder] = files.map((file) => folderOf(file.path));
  const areTogether = folder === otherFolder;
  const isEnough = common.length > 2 || (common !== "" && areTogether);
  const folderName = areTogether ? lastName(folder.slice(0, -1)).replace(/\.(zip|gz)$/i, "") : "";
  return (isEnough ? common : folderName) || "discs";
}

/**
 * Where a savegame comes from: the file, the money in it, and when it was written, so that other savegames have other
 * names. A backup has that in its own name.
 *
 * @param {Medium} medium
 */
function originOf(medium) {
  const { name, modified } = medium.files[0];
  const backup = /^backup of (.*)(, money \d+, \d{4}-\d\d-\d\d \d\d-\d\d-\d\d)/s.exec(name);
  if (backup) return toPart(backup[1]) + backup[2];
  const saved = medium.savegame.filter(({ state }) => state !== "none");
  const money = saved[0]?.fields.get("money") ?? 0;
  const half = saved.length === 1 ? ", half" : "";
  return `${toPart(commonName(medium))}${half}, money ${money}, ${formatTime(modified)}`;
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
  /** @param {string} name */
  const toShort = (name) => toPart(withoutAdditions(splitExtension(name).stem));
  const short = into.files.map(({ path }) => toShort(lastName(path)));
  const isSame = new Set(short.map((name) => name.toLowerCase())).size < short.length;
  return into.files.map(({ name }, i) => {
    const { extension } = splitExtension(name);
    const which = isSame ? `${short[i]} disc ${i + 2}` : toShort(name);
    const ending = extension === "" ? "" : `.${toPart(extension)}`;
    return `${which} (savegame of ${originOf(from)})${ending}`;
  });
}
