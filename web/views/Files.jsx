// The files that were given: a card for each savegame or place for one, and folded lists of the rest.
import { countFound, groupFiles } from "../model/cards.js";
import { findSameSavegame } from "../model/compare.js";
import { findMedia, hasSavegame, mediumOfFile, mediumOfPair } from "../model/media.js";
import { readDiscName } from "../model/names.js";
import { discNumbers, findFreeFloppies } from "../model/pairs.js";
import { sourceRoles } from "../model/sources.js";
import { Choice, countOf, Fold, formatNumber, formatSize, formatTime, goTo, Short, shortTitleOf } from "./parts.jsx";
import { Damages, Remarks, Summary } from "./savegames.jsx";

/** @import { ComponentChildren } from "preact" */
/** @import { DiscNumber, FileFacts, Medium, Pair, Place, SourceRole, State } from "../model/types.js" */
/** @import { Card } from "../model/cards.js" */
/** @import { Send } from "./App.jsx" */

/** @typedef {{state: State, titles: Map<string, string>, send: Send}} Common */

/** @type {[string, string]} */
const cannotBeUsed = ["file that cannot be used as it is", "files that cannot be used as they are"];
const unpackIt = "Unpack it yourself, and add the files that are in it.";
const needed = "add disc 2 and disc 3 of the game, or the memory expansion";

/** Why a file cannot be used, and what to do. @param {FileFacts} file */
function describeProblem({ size, contents }) {
  if (contents.kind !== "refused") return "";
  const texts = {
    tracks35:
      "A floppy disc of 35 tracks. The game uses discs of 40 tracks, so its savegame cannot be here: use the original " +
      "file, which has 196,608 bytes.",
    tracks42: "A floppy disc of 42 tracks. The game uses discs of 40 tracks: use a .d64 file that has 196,608 bytes.",
    otherDisc: "A disc of another drive, or in another format. The game’s discs are .d64 files of 196,608 bytes.",
    snapshot:
      "A snapshot of an emulator. Load it there, save the memory expansion into a file, or use the disc images.",
    cartridge: `A cartridge. No savegame is kept there: ${needed}.`,
    tape: `A tape. No savegame is kept there: ${needed}.`,
    program: `A program, or music. No savegame is kept there: ${needed}.`,
    otherArchive: `An archive of a kind that this page cannot open. ${unpackIt}`,
    nestedArchive: `An archive in an archive. ${unpackIt}`,
    damagedArchive: "It cannot be unpacked: the archive is damaged or incomplete. Copy or download the archive again.",
    emptyArchive: "There is no file in this archive.",
    encrypted: "It is encrypted. Unpack the archive yourself, with its password, and add the files that are in it.",
    otherPacking: "It is packed in a way that this page cannot read. Unpack the archive yourself, and add the files.",
    noPlace:
      "This seems to be a memory expansion, but it has no place for a savegame. Start the game once with it, let the " +
      "emulator save the expansion, close the emulator, and add the file again.",
    empty: "This file is empty: it has 0 bytes. Copy or download it again.",
    oddFloppy: `It has ${formatSize(size)}, which is no size of a floppy disc. It may be cut off: copy or download it again.`,
    unknown: `It has ${formatSize(size)}, and is neither a floppy disc, a memory expansion, a backup nor a source of the game.`,
    tooLarge: "It is too large: at most 256 MiB can be read.",
    noRoom: "There is no room for it: all files together can have 512 MiB. Remove others first.",
    unreadable: "It cannot be read. If it is a folder, choose it with the button “Choose a folder”.",
    failed: `The program could not look into it. ${contents.error}`,
  };
  return texts[/** @type {keyof typeof texts} */ (contents.reason)];
}

/**
 * Does something after which a file is no longer where it was, and moves the focus to the next one in the list.
 *
 * @param {HTMLElement} button in the file's card
 * @param {() => void} change
 */
function changeAndFocusNext(button, change) {
  const all = [.../** @type {NodeListOf<HTMLElement>} */ (document.querySelectorAll("#files-heading, .file"))];
  const visible = all.filter((element) => element.offsetParent !== null);
  const at = visible.indexOf(/** @type {HTMLElement} */ (button.closest(".file")));
  change();
  const next = [...visible.slice(at + 1), ...visible.slice(0, at).reverse()].find((element) => element.isConnected);
  next?.focus();
}

/** Removes files. @param {{files: FileFacts[], send: Send}} props */
function RemoveButton({ files, send }) {
  const name = `Remove ${files.map(({ title }) => title).join(" and ")}`;
  const remove = (/** @type {{currentTarget: HTMLElement}} */ { currentTarget }) =>
    changeAndFocusNext(currentTarget, () => send({ type: "filesRemoved", ids: files.map(({ id }) => id) }));
  return (
    <button type="button" class="quiet" aria-label={name} onClick={remove}>
      Remove
    </button>
  );
}

/**
 * A card that can have the focus, with a heading and the button that removes its files.
 *
 * @param {{title: ComponentChildren, files: FileFacts[], send: Send, children: ComponentChildren}} props
 */
function FileCard({ title, files, send, children }) {
  return (
    <li class="card file" tabIndex={-1}>
      <div class="file-head">
        <h3>{title}</h3>
        <RemoveButton files={files} send={send} />
      </div>
      {files.map((file) => (
        <Outdated key={file.id} file={file} />
      ))}
      {children}
    </li>
  );
}

/** @type {Record<Place["grounds"], string>} */
const groundsInWords = {
  names: "a guess from the names",
  order: "a guess: the names do not say it",
  chosen: "as you have chosen",
  swapped: "as you have swapped them",
  anew: "in place of the file that had changed",
};

/**
 * One of the two places of a pair: the list to choose another file for it, and the way to remove that.
 *
 * @param {Common & {pair: Pair, disc: DiscNumber}} props
 */
function DiscPlace({ state, titles, pair, disc, send }) {
  const file = state.files.find(({ id }) => id === pair[disc]?.file);
  // Keys choose one after the other in a list: no disc of another place is in it.
  const floppies = [...(file ? [file] : []), ...findFreeFloppies(state.files, state.pairs)];
  const options = [["", "– none –"], ...floppies.map(({ id, title }) => [id, titles.get(title) ?? title])];
  const position = state.pairs.length > 1 ? ` of pair ${state.pairs.indexOf(pair) + 1}` : "";
  /** @param {string} id */
  function choose(id) {
    if (id !== "") send({ type: "discChosen", file: id, pair: pair.id, disc });
    else if (file) send({ type: "discTakenOut", file: file.id });
  }
  return (
    <div class="place">
      <Choice
        label={`Disc ${disc}`}
        name={`Disc ${disc}${position}`}
        options={options}
        value={file?.id ?? ""}
        onChoose={choose}
      />
      {file && <RemoveButton files={[file]} send={send} />}
    </div>
  );
}

/** Which disc is which, and on what grounds. @param {Common & {pair: Pair, disc: DiscNumber}} props */
function DiscLine({ state, titles, pair, disc }) {
  const place = pair[disc];
  const file = state.files.find(({ id }) => id === place?.file);
  if (!file || !place) return <li class="remark">Disc {disc} is missing: please add it, or choose it below.</li>;
  const { number = disc } = readDiscName(file.path);
  return (
    <li id={`disc-${file.id}`}>
      Disc {disc}: <Short titles={titles} title={file.title} />{" "}
      <span class="kind">({groundsInWords[place.grounds]})</span>
      {number !== disc && <span class="remark">But its name says {number}.</span>}
      <Blank file={file} />
    </li>
  );
}

/** @param {{file: FileFacts}} props */
function Blank({ file }) {
  if (file.contents.kind !== "floppy" || !file.contents.isBlank) return undefined;
  return <span class="remark">It is blank: the game’s own discs are not.</span>;
}

/** @param {{file: FileFacts}} props */
function Outdated({ file }) {
  if (!file.isOutdated) return undefined;
  return <p class="warning">{file.title} has changed on the disk since you added it: please add it again.</p>;
}

/** @param {Common & {medium: Medium}} props */
function Contents({ state, titles, medium, send }) {
  const same = hasSavegame(medium.savegame) && findSameSavegame(medium, findMedia(state));
  /** @param {string} id */
  function look(id) {
    send({ type: "searchTyped", text: "" });
    send({ type: "shownChosen", medium: id });
    goTo("look-heading");
  }
  return (
    <>
      <Summary discs={medium.savegame} />
      <Damages savegame={medium.savegame} />
      <Remarks savegame={medium.savegame} />
      {same && <p class="kind">The same savegame as in {shortTitleOf(titles, same)}: all 1,024 bytes are equal.</p>}
      {hasSavegame(medium.savegame) && (
        <button
          type="button"
          class="quiet"
          aria-label={`Look inside ${shortTitleOf(titles, medium)}`}
          onClick={() => look(medium.id)}
        >
          Look inside
        </button>
      )}
    </>
  );
}

/** @param {Common & {pair: Pair}} props */
function PairCard({ state, titles, pair, send }) {
  const medium = mediumOfPair(state.files, pair);
  const files = state.files.filter(({ id }) => discNumbers.some((disc) => pair[disc]?.file === id));
  const position = state.pairs.length > 1 ? `, pair ${state.pairs.indexOf(pair) + 1}` : "";
  const discs = files.flatMap(({ contents }) => (contents.kind === "floppy" ? contents.disc : []));
  return (
    <FileCard title={`Two floppy discs${position}`} files={files} send={send}>
      <ul role="list" class="discs">
        {discNumbers.map((disc) => (
          <DiscLine key={disc} state={state} titles={titles} pair={pair} disc={disc} send={send} />
        ))}
      </ul>
      {medium ? <Contents state={state} titles={titles} medium={medium} send={send} /> : <Summary discs={discs} />}
      {medium?.isSame && (
        <p class="warning">
          Both discs have the same contents, so they are not disc 2 and disc 3 of the game. A savegame goes into copies
          of the game’s own discs: please add those.
        </p>
      )}
      <Fold isOpen={!medium} summary={`Change or swap the discs${position && ` of${position.slice(1)}`}`}>
        <p class="kind">The files themselves do not say which disc they are.</p>
        {discNumbers.map((disc) => (
          <DiscPlace key={disc} state={state} titles={titles} pair={pair} disc={disc} send={send} />
        ))}
        {medium && (
          <button type="button" onClick={() => send({ type: "discsExchanged", pair: pair.id })}>
            Swap disc 2 and disc 3
          </button>
        )}
      </Fold>
    </FileCard>
  );
}

/** @param {Common & {file: FileFacts}} props */
function MediumCard({ state, titles, file, send }) {
  const medium = mediumOfFile(file);
  const kind = file.contents.kind === "memory" ? "Memory expansion" : "Backup of a savegame";
  const isEmpty = medium && !hasSavegame(medium.savegame);
  return (
    <FileCard title={<Short titles={titles} title={file.title} />} files={[file]} send={send}>
      <p class="kind">
        {isEmpty && file.contents.kind === "data" ? "A file of the size of a backup" : kind}, {formatSize(file.size)},
        written {formatTime(file.modified)}
      </p>
      {medium && <Contents state={state} titles={titles} medium={medium} send={send} />}
    </FileCard>
  );
}

/**
 * The places that a floppy disc can be put into: the empty ones of pairs, and both of a new pair.
 *
 * @param {Common & {file: FileFacts}} props
 */
function PlaceButtons({ state, titles, file, send }) {
  const waiting = state.pairs.flatMap((pair) => {
    const other = state.files.find(({ id }) => discNumbers.some((disc) => pair[disc]?.file === id));
    const beside = other && (titles.get(other.title) ?? other.title);
    return discNumbers.filter((disc) => !pair[disc]).map((disc) => ({ disc, pair: pair.id, beside }));
  });
  const places = [...waiting, ...discNumbers.map((disc) => ({ disc, pair: undefined, beside: undefined }))];
  /** @param {DiscNumber} disc @param {string} [pair] */
  function choose(disc, pair) {
    send({ type: "discChosen", file: file.id, pair, disc });
    const line = document.getElementById(`disc-${file.id}`);
    /** @type {HTMLElement | null | undefined} */ (line?.closest(".file"))?.focus();
  }
  return (
    <p class="buttons">
      {places.map(({ disc, pair, beside }) => (
        <button
          key={`${pair} ${disc}`}
          type="button"
          aria-label={`It is disc ${disc}${beside ? `, beside ${beside}` : ""}: ${file.title}`}
          onClick={() => choose(disc, pair)}
        >
          It is disc {disc}
          {beside ? `, beside ${beside}` : waiting.length > 0 && " of another pair"}
        </button>
      ))}
    </p>
  );
}

/** A floppy disc that is in no pair. @param {Common & {file: FileFacts}} props */
function FreeFloppy({ file, ...common }) {
  return (
    <FileCard title={<Short titles={common.titles} title={file.title} />} files={[file]} send={common.send}>
      {file.contents.kind === "floppy" && <Summary discs={[file.contents.disc]} />}
      <Blank file={file} />
      <PlaceButtons file={file} {...common} />
    </FileCard>
  );
}

/** @param {Common & {files: FileFacts[]}} props */
function FreeFloppies({ files, ...common }) {
  if (files.length === 0) return undefined;
  const hasPair = common.state.pairs.some((pair) => pair[2] && pair[3]);
  return (
    <Fold
      isOpen={!hasPair}
      summary={countOf(files.length, "floppy disc without its other disc", "floppy discs without their other disc")}
    >
      <p class={hasPair ? "kind" : "warning"}>
        {hasPair
          ? "They are not used, unless you say which disc they are: their names, or folders, do not say which belong together."
          : files.length === 1
            ? "The savegame is on disc 2 and disc 3 of the game. Please add the other disc. If you have it already, say which disc this is."
            : "The savegame is on disc 2 and disc 3 of the game. If one is missing, please add it. The names, or folders, do not say which files belong together: say which disc each one is."}
      </p>
      <ul role="list">
        {files.map((file) => (
          <FreeFloppy key={file.id} file={file} {...common} />
        ))}
      </ul>
    </Fold>
  );
}

/** @param {Common & {files: FileFacts[]}} props */
function Sources({ state, titles, files, send }) {
  if (files.length === 0) return undefined;
  const options = [...sourceRoles.map((name) => [name, name]), ["", "none of these"]];
  const roleOf = (/** @type {FileFacts} */ { id }) => sourceRoles.find((role) => state.sources[role] === id) ?? "";
  const choose = (/** @type {string} */ id, /** @type {string} */ role) =>
    send({ type: "roleChosen", file: id, role: /** @type {SourceRole} */ (role) || undefined });
  return (
    <details>
      <summary>
        {countOf(files.length, "text", "texts")}: the game’s source files, which name its flags, or others
      </summary>
      <ul role="list">
        {files.map((file) => (
          <li key={file.id} class="line file" tabIndex={-1}>
            <Short titles={titles} title={file.title} />
            <Choice
              label="is used as"
              name={`${file.title} is used as`}
              options={options}
              value={roleOf(file)}
              onChoose={(role) => choose(file.id, role)}
            />
            <RemoveButton files={[file]} send={send} />
          </li>
        ))}
      </ul>
    </details>
  );
}

/** @param {{titles: Map<string, string>, files: FileFacts[], isOpen: boolean, send: Send}} props */
function RefusedFiles({ titles, files, isOpen, send }) {
  if (files.length === 0) return undefined;
  return (
    <Fold isOpen={isOpen} summary={countOf(files.length, ...cannotBeUsed)}>
      <ul role="list">
        {files.map((file) => (
          <li key={file.id} class="line file" tabIndex={-1}>
            <p>
              <strong>
                <Short titles={titles} title={file.title} />
              </strong>
              : {describeProblem(file)}
            </p>
            <RemoveButton files={[file]} send={send} />
          </li>
        ))}
      </ul>
    </Fold>
  );
}

/** @param {number} savegames @param {number} different how many of them */
function describeSame(savegames, different) {
  if (different === savegames) return "";
  return different === 1 ? " (all the same)" : ` (${formatNumber(different)} different ones)`;
}

/** What was found, and the way on. @param {{state: State, onStartOver: () => void}} props */
export function Found({ state, onStartOver }) {
  if (state.files.length === 0) return undefined;
  const { savegames, different, places, single, refused } = countFound(state);
  const notes = describeSame(savegames, different);
  const parts = [
    savegames > 0 && `${countOf(savegames, "savegame", "savegames")}${notes}`,
    places > 0 && `${formatNumber(places)} empty ${places === 1 ? "place" : "places"} for one`,
    single > 0 && countOf(single, "floppy disc without its other disc", "floppy discs without their other disc"),
    refused > 0 && countOf(refused, ...cannotBeUsed),
  ].filter((part) => part !== false);
  return (
    <div class="found">
      <p>
        <strong>Found: {parts.length > 0 ? parts.join(", ") : "no savegame, and no place for one"}.</strong>
      </p>
      <p class="buttons">
        {savegames > 0 && (
          <button type="button" class="main" onClick={() => goTo("move-heading")}>
            Next: move a savegame
          </button>
        )}
        <button type="button" class="quiet" onClick={onStartOver}>
          Start over (no file is deleted)
        </button>
      </p>
    </div>
  );
}

/** @param {Common} props */
export function Files({ state, titles, send }) {
  if (state.files.length === 0) return undefined;
  const { media, free, sources, refused } = groupFiles(state);
  const common = { state, titles, send };
  const card = (/** @type {Card} */ { id, pair, file }) => {
    if (pair) return <PairCard key={id} pair={pair} {...common} />;
    return file && <MediumCard key={id} file={file} {...common} />;
  };
  return (
    <>
      <ul role="list">{media.map(card)}</ul>
      <FreeFloppies files={free} {...common} />
      <RefusedFiles titles={titles} files={refused} isOpen={media.length + free.length === 0} send={send} />
      <Sources files={sources} {...common} />
    </>
  );
}
