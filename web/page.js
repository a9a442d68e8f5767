import { stashkeep } from "./program.js";

globalThis.stashkeep = stashkeep;
