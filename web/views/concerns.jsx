// What the person has to agree to, in words.
import { joinWords } from "./parts.jsx";
import { describeRemarks, pageNames } from "./savegames.jsx";

/** @import { Concern } from "../model/types.js" */

/** @param {{concern: Concern}} props */
export function ConcernText({ concern }) {
  const { kind, medium, disc = 2, page = 0, file, said } = concern;
  const [disc2, disc3] = medium.files.map((each) => each.title);
  const title = joinWords(medium.files.map((each) => each.title));
  const wrongOrder = "If that is wrong, the game will not find its savegame.";
  const texts = {
    halfEmpty: `Only disc ${5 - disc} has a savegame; disc ${disc} has none (${title}).`,
    different: `${disc2} and ${disc3} differ in ${describeRemarks(medium.savegame)}. If they are not of the same savegame, the game gets halves of two savegames.`,
    damaged: `Disc ${disc}: ${pageNames[page]} is damaged (${title}). Moving does not repair it.`,
    order: `The names do not say for sure whether ${disc2} or ${disc3} is disc 2. ${wrongOrder}`,
    anew: `${file?.title} has changed on the disk, and was added anew in its place. If it is of another savegame than the other disc, the game gets halves of two savegames.`,
    contradiction: `${file?.title} is used as disc ${disc}, but its name says ${said}. ${wrongOrder}`,
    twins: `There is another file with a name like ${file?.title}, so the names do not say whether ${disc2} and ${disc3} belong together. If they do not, the game gets halves of two savegames.`,
  };
  return texts[kind];
}
