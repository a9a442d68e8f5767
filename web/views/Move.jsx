// From where a savegame is moved, and into what; what will be lost; what has to be agreed to; and the button.
import { countDifferentBytes } from "../model/compare.js";
import { findConcerns } from "../model/concerns.js";
import {
  findFromOptions,
  findIntoOptions,
  findMedium,
  hasSavegame,
  isBlank,
  isPossible,
  newDataFile,
} from "../model/media.js";
import { ConcernText } from "./concerns.jsx";
import { Gone, goTo, joinWords, shortTitleOf, Warning } from "./parts.jsx";
import { describeHolding, Differences } from "./savegames.jsx";

/** @import { ComponentChildren } from "preact" */
/** @import { Concern, Medium, Option, State } from "../model/types.js" */
/** @import { Send } from "./App.jsx" */

/** @typedef {{state: State, titles: Map<string, string>, send: Send}} Common */

const overItself =
  "The savegame there lies over itself, or over the table that says where it is: nothing could prove that it is complete.";

/** @type {Record<NonNullable<Option["refusal"]>, string>} */
const refusals = {
  same: "Both discs have the same contents: they are not disc 2 and disc 3 of the game.",
  outdated: "It has changed on the disk: add it again.",
  noSavegame: "It has no savegame.",
  noSavegameAnywhere: "There is no savegame here: save in the game first.",
  noPlace: overItself,
};

/**
 * @param {object} props
 * @param {string} props.name
 * @param {string} props.legend
 * @param {string} [props.gone] the title of what was chosen, and is no longer as it was
 * @param {{id: string, title: string, details: string, refusal?: string}[]} props.options
 * @param {string} [props.chosen]
 * @param {(id: string) => void} props.onChoose
 * @param {ComponentChildren} [props.children]
 */
function RadioGroup({ name, legend, gone, options, chosen, onChoose, children }) {
  return (
    <fieldset>
      <legend>{legend}</legend>
      <Gone title={gone} when="chosen" />
      {options.map(({ id, title, details, refusal }) => (
        <label key={id} class="option">
          <input
            type="radio"
            name={name}
            checked={id === chosen}
            disabled={refusal !== undefined}
            onChange={() => onChoose(id)}
          />
          <span>
            {title}
            <span class="details">{refusal ?? details}</span>
          </span>
        </label>
      ))}
      {children}
    </fieldset>
  );
}

/** What happens in a copy of a target. @param {Medium | undefined} from @param {Medium} into */
function describeLoss(from, into) {
  if (isBlank(into.savegame)) return "empty: nothing is replaced";
  if (!hasSavegame(into.savegame)) return "no savegame, but something else in its place, which is replaced in the copy";
  if (from && countDifferentBytes(from.savegame, into.savegame) === 0) return "has the same savegame already";
  return `has a savegame, which is replaced in the copy: ${describeHolding(into.savegame)}`;
}

/** The savegame that is replaced beside the new one. @param {{titles: Map<string, string>, from: Medium, into: Medium}} props */
function Replacement({ titles, from, into }) {
  const title = shortTitleOf(titles, into);
  if (countDifferentBytes(from.savegame, into.savegame) === 0) {
    return <p class="note">{title} has the same savegame already: all 1,024 bytes are equal.</p>;
  }
  return (
    <div class="warning">
      <h3>In the copy, the savegame of {title} is replaced</h3>
      <p>It is backed up into a file of its own, which you can save together with the copy.</p>
      <Differences
        caption="The savegame that is replaced, and the new one"
        headings={["Replaced", "New"]}
        savegames={[into.savegame, from.savegame]}
      />
    </div>
  );
}

/** @param {{state: State, concerns: Concern[], send: Send}} props */
function Agreement({ state, concerns, send }) {
  const isAgreed = state.choices.agreed !== undefined;
  return (
    <div class="warning">
      {concerns.map((concern, i) => (
        <p key={i}>
          <ConcernText concern={concern} />
        </p>
      ))}
      <label class="option">
        <input
          type="checkbox"
          checked={isAgreed}
          onChange={(event) => send({ type: "agreementChosen", isAgreed: event.currentTarget.checked })}
        />
        <span>Move it all the same</span>
      </label>
    </div>
  );
}

/**
 * The last step: what is replaced, what to agree to, and the button.
 *
 * @param {Common & {from: Medium, into?: Medium}} props
 */
function LastStep({ state, titles, from, into, send }) {
  const concerns = findConcerns(state);
  const isReady = concerns.length === 0 || state.choices.agreed !== undefined;
  const isWorking = state.jobs.some(({ kind }) => kind === "make");
  const isReplacing = into && !isBlank(into.savegame);
  const isSame = into && countDifferentBytes(from.savegame, into.savegame) === 0;
  const text = into
    ? `Put the savegame into a copy of ${shortTitleOf(titles, into)}`
    : `Make a backup of the savegame in ${shortTitleOf(titles, from)}`;
  return (
    <>
      {isReplacing && <Replacement titles={titles} from={from} into={into} />}
      {concerns.length > 0 && <Agreement state={state} concerns={concerns} send={send} />}
      <p class="buttons">
        {state.result ? (
          <button type="button" onClick={() => goTo("result-heading")}>
            Show the new files
          </button>
        ) : (
          <button
            type="button"
            class={isSame ? "" : "main"}
            disabled={!isReady}
            onClick={() => send({ type: "makeAsked" })}
          >
            {text}
            {isReplacing && ", and back up the old one"}
          </button>
        )}
        {isWorking && <span class="kind">Making and comparing …</span>}
      </p>
    </>
  );
}

/** Why nothing was made. @param {{state: State}} props */
function Failures({ state }) {
  const failures = state.notices.filter((notice) => notice.kind === "notMade");
  return failures.map(({ id, error, outdated }) => (
    <Warning key={id}>
      That did not work, and nothing was made.{" "}
      {outdated.length > 0
        ? `Changed since you added it: ${joinWords(outdated.map(({ title }) => title))}. Close the emulator, and add the file again.`
        : error}
    </Warning>
  ));
}

/** @param {Common} props */
export function Move({ state, titles, send }) {
  const { choices, gone } = state;
  const fromOptions = findFromOptions(state);
  const from = findMedium(state, choices.from);
  const into = findMedium(state, choices.into);
  const hasFrom = fromOptions.some(isPossible);
  /** @param {Option[]} options @param {(medium: Medium) => string} describe */
  const toRows = (options, describe) =>
    options.map((option) => ({
      id: option.id,
      title: shortTitleOf(titles, option),
      details: describe(option),
      refusal: option.refusal && refusals[option.refusal],
    }));
  const dataFile = {
    id: newDataFile,
    title: "Only a backup file",
    details: "a new small file, which this page can put back",
    refusal: from?.canTake ? undefined : overItself,
  };
  const images = toRows(findIntoOptions(state), (medium) => describeLoss(from, medium));
  const intoRows = from && from.kind !== "data" ? [...images, dataFile] : images;
  return (
    <>
      <div class="columns">
        <RadioGroup
          name="from"
          legend="From: which savegame?"
          gone={gone.from}
          options={toRows(fromOptions, ({ savegame }) => describeHolding(savegame))}
          chosen={choices.from}
          onChoose={(medium) => send({ type: "fromChosen", medium })}
        />
        <RadioGroup
          name="into"
          legend="Into: where shall it go?"
          gone={gone.into}
          options={from ? intoRows : []}
          chosen={choices.into}
          onChoose={(medium) => send({ type: "intoChosen", medium })}
        >
          {hasFrom && !from && <p>First choose which savegame it is.</p>}
          {!hasFrom && <p>There is no savegame to put anywhere yet.</p>}
          {from && intoRows.length === 0 && <p>Add the file that the savegame shall go into.</p>}
          {from && intoRows.length > 0 && choices.into === undefined && <p class="remark">Choose where it shall go.</p>}
        </RadioGroup>
      </div>
      {!hasFrom && <p class="warning">To move a savegame, add the files that have it.</p>}
      {from && choices.into !== undefined && (
        <LastStep state={state} titles={titles} from={from} into={into} send={send} />
      )}
      <Failures state={state} />
    </>
  );
}
