// The shapes that the modules of the page exchange.

/**
 * A number of a slot in the inventory or chest, the item's id and name as `check` prints them, and how many there are.
 * @typedef {{slot: string, id: string, name: string, count: string, isUsed: boolean}} Slot
 */

/**
 * The savegame of one disc. Its state is "none" if the game has not saved there.
 * @typedef {object} Disc
 * @property {"none" | "damaged" | "good"} state
 * @property {number[]} damagedPages those with a wrong checksum
 * @property {Map<string, string>} fields the printed values by name
 * @property {Slot[]} inventory
 * @property {Slot[]} chest
 * @property {Uint8Array} bytes all 512
 */

/** @typedef {Disc[]} Savegame disc 2, then disc 3 */

/**
 * What a file is. A floppy image has the savegame of one disc, and `tailSize` error bytes at its end; all other bytes of a
 * blank one are the same. The `command` of a
 * memory image is what follows "extract" and "implant"; one that `canTake` has a place for every byte of a savegame.
 * A refused file has a reason, and maybe an error.
 * @typedef {{kind: "floppy", disc: Disc, tailSize: number, isBlank: boolean}
 *   | {kind: "memory", command: string, savegame: Savegame, canTake: boolean}
 *   | {kind: "data", savegame: Savegame}
 *   | {kind: "source"}
 *   | {kind: "refused", reason: string, error?: string}} Contents
 */

/**
 * A file that the person has given. Files with the same `content` have equal bytes. An outdated one has changed on the
 * disk since.
 * @typedef {object} FileFacts
 * @property {string} id
 * @property {string} path from the folder that was given
 * @property {string} title the path, with a number if another file has it too
 * @property {string} name the last part of the path, different from all others
 * @property {number} size in bytes
 * @property {number} modified the time of its last change, as browsers tell it
 * @property {string} batch files of one batch were given together
 * @property {string} [archive] the path of the archive in which it is
 * @property {string} content
 * @property {boolean} isOutdated
 * @property {Contents} contents
 */

/** @typedef {Pick<FileFacts, "id" | "path" | "size" | "modified" | "archive">} GivenFile */
/** @typedef {GivenFile & Pick<FileFacts, "content" | "contents">} ExaminedFile */

/** @typedef {2 | 3} DiscNumber */

/**
 * A place in a pair, with the id of its file, and on what grounds that is there: the names say it, nothing but the order
 * of the names does, the person has chosen it or swapped it with the other one, or it was added anew after it had
 * changed on the disk.
 * @typedef {{file: string, grounds: "names" | "order" | "chosen" | "swapped" | "anew"}} Place
 */

/** @typedef {{id: string, 2?: Place, 3?: Place}} Pair disc 2 and disc 3 of one game; a place may be empty */

/**
 * What holds a savegame as a whole, or has a place for one. The id consists of those of the files.
 * @typedef {object} Medium
 * @property {string} id
 * @property {"pair" | "memory" | "data"} kind
 * @property {FileFacts[]} files
 * @property {Pair} [pair]
 * @property {string} command what follows "extract" and "implant"; "" for a data file
 * @property {Savegame} savegame
 * @property {boolean} canTake
 * @property {boolean} isSame both discs have the same contents
 */

/** @typedef {Medium & {refusal?: "same" | "outdated" | "noSavegame" | "noSavegameAnywhere" | "noPlace"}} Option */

/** @typedef {"from" | "into" | "shown" | "compared"} ChoiceName */

/**
 * The media that were chosen, by their ids. `into` may be "data", a new data file. `agreed` is the key of the concerns
 * that the person has agreed to.
 * @typedef {{from?: string, into?: string, shown?: string, compared?: string, agreed?: string}} Choices
 */

/**
 * What the person has to agree to before anything is made of these files.
 * @typedef {object} Concern
 * @property {"halfEmpty" | "damaged" | "different" | "order" | "contradiction" | "twins" | "anew"} kind
 * @property {Medium} medium
 * @property {number} [disc]
 * @property {number} [page]
 * @property {FileFacts} [file]
 * @property {number} [said] the number in the file's name
 */

/** @typedef {{name: string, size: number, changedBytes: number, tailSize: number, isSaved: boolean}} MadeFile */

/**
 * What the new files are called. The backup is a data file with the savegame that is replaced.
 * @typedef {{files: string[], backup?: string}} MadeNames
 */

/**
 * What was made: the new images, and the backup behind them if a savegame was replaced; or a new data file.
 *
 * @typedef {object} Result
 * @property {string} id
 * @property {Medium} from
 * @property {Medium} [into] nothing if it is a new data file
 * @property {Concern[]} concerns those that the person has agreed to
 * @property {MadeFile[]} files
 * @property {boolean} hasBackup
 */

/** @typedef {{name: string, values: string[]}} Flag with its values on disc 2 and disc 3 */
/** @typedef {{game: Flag[], world: Flag[]}} Flags */

/**
 * What came of reading flags. Without flags, the output says why, or it is unclear where names end and values begin.
 * Included files that were not found stand `missing`; others are used by their last names.
 * @typedef {{flags?: Flags, output: string, missing: string[], standIns: {path: string, name: string}[],
 *   isUnclear: boolean}} FlagReading
 */

/**
 * The flags of a medium, read with certain sources, which the `key` says.
 * @typedef {{key: string, medium: string, isReading: boolean} & Partial<FlagReading>} FlagReport
 */

/** @typedef {"scr_flags.asm" | "scr_collectableids.asm" | "scr_globaldefines.asm"} SourceRole */

/**
 * What the shell has to do, one job after the other.
 * @typedef {{id: string, kind: "examine", given: GivenFile[]}
 *   | {id: string, kind: "make", from: Medium, into?: Medium, names: MadeNames, concerns: Concern[]}
 *   | {id: string, kind: "readFlags", key: string, medium: Medium, main: FileFacts[], included: FileFacts[]}} Job
 */

/**
 * Something that the person has to know.
 * @typedef {{id: string} & (
 *     {kind: "replaced", old: FileFacts, file: FileFacts}
 *   | {kind: "nothingGiven"}
 *   | {kind: "leftOut", count: number}
 *   | {kind: "ignored", paths: string[]}
 *   | {kind: "failed", error: string}
 *   | {kind: "notMade", error?: string, outdated: FileFacts[]}
 *   | {kind: "madeInVain"})} Notice
 */

/**
 * A run of the program, and the beginning of what it printed, which had `size` bytes.
 * @typedef {{purpose: string, args: string[], exitStatus: number, output: string, size: number}} LogEntry
 */

/**
 * Everything that the page knows.
 * @typedef {object} State
 * @property {FileFacts[]} files
 * @property {FileFacts[]} doubles files like others in the list, which the person may add all the same
 * @property {Pair[]} pairs
 * @property {Partial<Record<SourceRole, string>>} sources the ids of the files with these roles
 * @property {Choices} choices
 * @property {Partial<Record<ChoiceName | "result", string>>} gone titles of what was chosen or made, and is no longer so
 * @property {Result} [result]
 * @property {FlagReport[]} flagReports of the shown medium and of that beside it
 * @property {Job[]} jobs the first one is running
 * @property {string} progress what it is doing
 * @property {Notice[]} notices
 * @property {LogEntry[]} log
 * @property {string} search
 * @property {number} lastId
 */

export {};
