// Counts the words of each note.
const fs = require("fs");

for (const line of fs.readFileSync("notes.txt", "utf8").trim().split("\n")) {
  const [time, ...words] = line.split(" ");
  console.log(`${time.padStart(5)}  ${words.length} words`);
}
