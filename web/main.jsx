// Starts the page.
import "./page.js";
