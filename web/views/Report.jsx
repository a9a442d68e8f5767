// What a savegame holds, alone or beside another one: values, items and flags.
import { compareFlags, countDifferentBytes, joinFlags } from "../model/compare.js";
import { findMedia, findMedium, hasSavegame } from "../model/media.js";
import { toTitle } from "../model/names.js";
import { findRows } from "../model/search.js";
import { findSources, sourceRoles } from "../model/sources.js";
import { isLikelyUsed, itemName, otherValueNames, valueNames } from "../model/values.js";
import { Choice, countOf, formatNumber, formatTime, Gone, Name, ProgramOutput, shortTitleOf, Table } from "./parts.jsx";
import { Damages, Differences, Remarks, Summary } from "./savegames.jsx";

/** @import { Disc, Flag, FlagReport, Medium, Savegame, Slot, State } from "../model/types.js" */
/** @import { Send } from "./App.jsx" */

/** @typedef {{state: State, titles: Map<string, string>, send: Send}} Common */

const discColumns = ["Disc\u00a02", "Disc\u00a03"];

/** @param {{caption: string, slots: Slot[], search: string}} props */
function ItemTable({ caption, slots, search }) {
  const items = slots.map((slot) => ({ name: itemName(slot), count: slot.count }));
  const rows = findRows(items, search).rows.map(({ name, count }) => [name, count]);
  if (rows.length === 0) return <p class="kind">{`${caption}: ${search === "" ? "nothing" : "nothing found"}`}</p>;
  return <Table caption={caption} headings={["Item", "Count"]} rows={rows} />;
}

/**
 * Items that do not count. They are found, too.
 *
 * @param {{summary: string, caption: string, slots: Slot[], search: string}} props
 */
function FoldedItems({ summary, caption, slots, search }) {
  if (slots.length === 0) return undefined;
  const isSearching = search !== "";
  return (
    <>
      <details hidden={isSearching}>
        <summary>{summary}</summary>
        <ItemTable caption={caption} slots={slots} search="" />
      </details>
      {isSearching && <ItemTable caption={caption} slots={slots} search={search} />}
    </>
  );
}

/** @param {{disc: Disc, title: string, search: string}} props */
function DiscItems({ disc, title, search }) {
  const { inventory, chest } = disc;
  const used = inventory.filter(({ isUsed }) => isUsed);
  const unused = inventory.filter(({ isUsed }) => !isUsed);
  const others = chest.filter((slot) => !isLikelyUsed(slot));
  return (
    <div>
      <ItemTable caption={`${title}: inventory`} slots={used} search={search} />
      <FoldedItems
        summary={`${countOf(unused.length, "place", "places")} not in use`}
        caption={`${title}: inventory, not in use`}
        slots={unused}
        search={search}
      />
      <ItemTable caption={`${title}: chest`} slots={chest.filter(isLikelyUsed)} search={search} />
      <FoldedItems
        summary={`${countOf(others.length, "other place", "other places")}, probably empty`}
        caption={`${title}: chest, probably empty`}
        slots={others}
        search={search}
      />
    </div>
  );
}

/** @param {{savegame: Savegame, title: string, search: string}} props */
function SavegameTables({ savegame, title, search }) {
  if (!hasSavegame(savegame)) return undefined;
  const row = (/** @type {string} */ name) =>
    savegame.map(({ state, fields }) => (state === "none" ? "–" : fields.get(name)));
  const headings = ["Value", ...discColumns];
  return (
    <>
      <div hidden={search !== ""}>
        <Table
          caption={`Values of ${title}`}
          headings={headings}
          rows={[...valueNames].map(([name, text]) => [text, ...row(name)])}
        />
        <details>
          <summary>Values whose meaning is not known</summary>
          <Table
            caption={`Other values of ${title}, as the program prints them`}
            headings={headings}
            rows={otherValueNames(savegame[0]).map((name) => [<Name text={name} />, ...row(name)])}
          />
        </details>
      </div>
      <div class="columns">
        {savegame.map(
          (disc, i) =>
            disc.state !== "none" && (
              <DiscItems key={i} disc={disc} title={`${title}, disc ${i + 2}`} search={search} />
            ),
        )}
      </div>
    </>
  );
}

/** @param {{title: string, flags: Flag[], headings: string[], search: string}} props */
function FlagTable({ title, flags, headings, search }) {
  const { count, rows } = findRows(flags, search);
  const isAll = count === flags.length;
  const caption = `${title}: ${formatNumber(count)}${isAll ? "" : ` of ${formatNumber(flags.length)}`}`;
  if (count === 0) return <p class="kind">{caption}</p>;
  return (
    <>
      <Table
        caption={caption}
        headings={["Flag", ...headings]}
        rows={rows.map(({ name, values }) => [<Name text={name} />, ...values])}
      />
      {rows.length < count && (
        <p>{formatNumber(count - rows.length)} more are not shown. Search for a part of the name to find them.</p>
      )}
    </>
  );
}

/**
 * What keeps flags from being shown, or from being right.
 *
 * @param {State} state
 * @param {Medium} medium
 * @param {FlagReport} [report]
 */
function findFlagProblems(state, medium, report) {
  const { flags, missing = [], standIns = [], isUnclear } = /** @type {Partial<FlagReport>} */ (report ?? {});
  const { main } = findSources(state);
  const absent = sourceRoles.filter((_, i) => !main[i]);
  const problems = [];
  const damaged = medium.savegame.flatMap(({ damagedPages }, i) => (damagedPages.includes(0) ? i + 2 : []));
  if (flags) problems.push(...damaged.map((disc) => `The flags of disc ${disc} are damaged: they may be wrong.`));
  if (absent.length > 0 && absent.length < main.length) {
    problems.push(`For the flags, these sources are missing: ${absent.join(", ")}.`);
  }
  if (missing.length > 0)
    problems.push(`Looked for and not found: ${missing.map(toTitle).join(", ")}. Add the whole folder generated.`);
  for (const { path, name } of standIns)
    problems.push(`${toTitle(path)} is not there: ${toTitle(name)} is used in its place.`);
  if (isUnclear) {
    problems.push("A name in these sources may have a line break in it: nobody can tell the flags from their values.");
  } else if (report && !report.isReading && !flags) {
    problems.push("The flags could not be read from these sources.");
  }
  if (flags?.game.length === 0) problems.push("No game flags were found: is the right file used as scr_flags.asm?");
  if (flags?.world.length === 0) {
    problems.push("No world flags were found: is the right file used as scr_globaldefines.asm?");
  }
  return problems;
}

/** @param {Common & {medium: Medium}} props */
function FlagTables({ state, titles, medium }) {
  const { search, flagReports, sources } = state;
  if (Object.values(sources).every((id) => id === undefined)) {
    return (
      <p class="kind">
        To see every flag of the game by its name, also add the game’s sources: {sourceRoles.join(", ")}, and the folder
        generated.
      </p>
    );
  }
  const report = flagReports.find((each) => each.medium === medium.id);
  const { flags, output, isReading } = /** @type {Partial<FlagReport>} */ (report ?? {});
  const title = shortTitleOf(titles, medium);
  return (
    <>
      {findFlagProblems(state, medium, report).map((text) => (
        <p key={text} class="warning">
          {text}
        </p>
      ))}
      {isReading && <p>Reading the flags …</p>}
      {output !== undefined && !flags && <ProgramOutput output={output} />}
      {flags && (
        <>
          <FlagTable title={`Game flags of ${title}`} flags={flags.game} headings={discColumns} search={search} />
          <FlagTable title={`World flags of ${title}`} flags={flags.world} headings={discColumns} search={search} />
        </>
      )}
    </>
  );
}

/** What differs between two savegames. @param {Common & {media: Medium[]}} props */
function Comparison({ state, titles, media }) {
  const [medium, other] = media;
  const names = media.map((each) => shortTitleOf(titles, each));
  const headings = names.flatMap((name) => discColumns.map((disc) => `${disc} of ${name}`));
  const isSame = countDifferentBytes(medium.savegame, other.savegame) === 0;
  const isSearching = state.search !== "";
  const compare = isSearching ? joinFlags : compareFlags;
  const [flags, otherFlags] = media.map(({ id }) => state.flagReports.find((report) => report.medium === id)?.flags);
  return (
    <div class="note">
      <h3>
        {names[0]} beside {names[1]}
      </h3>
      <Differences
        caption={`Values and items of ${names[0]} and ${names[1]}`}
        headings={names}
        savegames={[medium.savegame, other.savegame]}
      />
      {!isSame && (
        <p class="kind">
          {media.map((each, i) => `The file ${names[i]} was written ${formatTime(each.files[0].modified)}. `)}
          The savegames themselves do not say which of them is the later one.
        </p>
      )}
      {flags && otherFlags && (
        <FlagTable
          title={isSearching ? "Flags of both" : "Flags that differ"}
          flags={[...compare(flags.game, otherFlags.game), ...compare(flags.world, otherFlags.world)]}
          headings={headings}
          search={state.search}
        />
      )}
    </div>
  );
}

/** @param {Common} props */
export function Report({ state, titles, send }) {
  const { choices, gone, search } = state;
  const media = findMedia(state);
  const medium = findMedium(state, choices.shown);
  const other = findMedium(state, choices.compared);
  const options = media.map((each) => [each.id, shortTitleOf(titles, each)]);
  const title = medium ? shortTitleOf(titles, medium) : "";
  return (
    <>
      <Gone title={gone.shown} when="shown here" />
      <Choice
        label="Savegame in"
        options={[["", "– choose –"], ...options]}
        value={medium?.id ?? ""}
        onChoose={(id) => send({ type: "shownChosen", medium: id })}
      />
      <Gone title={gone.compared} when="compared here" />
      {medium && media.length > 1 && (
        <Choice
          label="Compare it with"
          options={[["", "– none –"], ...options.filter(([id]) => id !== medium.id)]}
          value={other?.id ?? ""}
          onChoose={(id) => send({ type: "comparedChosen", medium: id })}
        />
      )}
      {medium && (
        <label class="select">
          Search items and flags
          <input
            type="search"
            value={search}
            onInput={(event) => send({ type: "searchTyped", text: event.currentTarget.value })}
          />
        </label>
      )}
      {medium && other && <Comparison state={state} titles={titles} send={send} media={[medium, other]} />}
      {medium && (
        <>
          <h3>{title}</h3>
          <Summary discs={medium.savegame} />
          <Damages savegame={medium.savegame} />
          <Remarks savegame={medium.savegame} />
          <SavegameTables savegame={medium.savegame} title={title} search={search} />
          <FlagTables state={state} titles={titles} medium={medium} send={send} />
        </>
      )}
    </>
  );
}
