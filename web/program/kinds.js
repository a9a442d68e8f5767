// What a file is that is no savegame's: by its first bytes, by its size, or by its extension, in this order. The reasons
// are those for which it is refused; the page has a sentence for each.

/**
 * First bytes, as Latin-1, and what a file with them is. All have at least three bytes: a memory image begins with anything.
 * @type {readonly (readonly [reason: string, ...beginnings: string[]])[]}
 */
const beginnings = [
  ["nestedArchive", "PK\x03\x04", "PK\x05\x06", "\x1f\x8b\x08"],
  ["otherArchive", "7z\xbc\xaf\x27\x1c", "Rar!\x1a\x07", "BZh", "\xfd7zXZ\0", "\x28\xb5\x2f\xfd", "MSCF"],
  ["snapshot", "VICE Snapshot File\x1a"],
  ["otherDisc", "GCR-1541", "GCR-1571", "MNIB-1541-RAW", "P64-1541", "C\x15\x41\x64"],
  ["cartridge", "C64 CARTRIDGE   "],
  ["tape", "C64-TAPE-RAW", "C64 tape", "C64S tape", "C64-TAPE"],
  ["program", "C64File\0", "\x7fELF", "PSID", "RSID"],
  ["ignored", "\x89PNG", "\xff\xd8\xff", "GIF8", "%PDF-", "ID3", "OggS"],
];

/** Sizes in bytes, those with error bytes too. */
const sizes = new Map([
  ...[174_848, 175_531].map((size) => /** @type {const} */ ([size, "tracks35"])),
  ...[205_312, 206_114].map((size) => /** @type {const} */ ([size, "tracks42"])),
  ...[349_696, 351_062, 533_248, 819_200, 822_400, 1_066_496].map((size) => /** @type {const} */ ([size, "otherDisc"])),
]);

/** @type {readonly (readonly [reason: string, ...extensions: string[]])[]} */
const extensions = [
  ["oddFloppy", "d64"],
  ["otherArchive", "7z", "rar", "tar", "bz2", "xz", "zst", "lha", "lzh", "arj", "cab", "lnx", "ark", "sda"],
  ["snapshot", "vsf", "vsnap", "snap", "s64", "c64s", "frz"],
  [
    "otherDisc",
    "g64",
    "g71",
    "nib",
    "nbz",
    "p64",
    "x64",
    "d71",
    "d80",
    "d81",
    "d82",
    "d1m",
    "d2m",
    "d4m",
    "dnp",
    "dhd",
  ],
  ["cartridge", "crt"],
  ["tape", "tap", "t64"],
  ["program", "prg", "p00", "exe", "com", "dll", "so", "sid"],
  ["ignored", "png", "jpg", "jpeg", "gif", "bmp", "webp", "svg", "pdf", "mp3", "ogg", "wav", "mp4"],
  [
    "ignored",
    "doc",
    "docx",
    "odt",
    "xls",
    "xlsx",
    "ods",
    "pptx",
    "epub",
    "htm",
    "html",
    "css",
    "js",
    "url",
    "lnk",
    "ini",
  ],
];

/** @param {Uint8Array} bytes */
export function kindByBeginning(bytes) {
  const head = String.fromCharCode(...bytes.subarray(0, 24));
  return beginnings.find(([, ...all]) => all.some((beginning) => head.startsWith(beginning)))?.[0];
}

/** @param {number} size in bytes */
export function kindBySize(size) {
  return sizes.get(size);
}

/** @param {string} extension in small letters */
export function kindByExtension(extension) {
  return extensions.find(([, ...all]) => all.includes(extension))?.[0];
}
