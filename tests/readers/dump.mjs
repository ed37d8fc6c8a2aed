// Prints what mdb-reader finds in a file, an object a line for each user table:
//
//   node dump.mjs FOLDER-WITH-NODE_MODULES FILE
//
// Dates are written as "yyyy-mm-dd hh:mm:ss", bytes in hexadecimal, GUIDs in capitals, exact numbers
// as numbers.
import { readFileSync } from "node:fs";
import { createRequire } from "node:module";
import { pathToFileURL } from "node:url";

const [folder, file] = process.argv.slice(2);
const require = createRequire(`${folder}/package.json`);
const { default: MDBReader } = await import(pathToFileURL(require.resolve("mdb-reader")).href);

function plain(value, type) {
  if (value === null || value === undefined) return null;
  if (value instanceof Date) return value.toISOString().slice(0, 19).replace("T", " ");
  if (typeof value === "object") return Buffer.from(value).toString("hex");
  if (type === "currency" || type === "numeric") return Number(value);
  if (type === "repid") return value.replace(/[{}]/g, "").toUpperCase();
  return value;
}

const reader = new MDBReader(readFileSync(file));
for (const name of reader.getTableNames()) {
  const table = reader.getTable(name);
  const columns = table.getColumns();
  console.log(JSON.stringify({
    table: name,
    count: table.rowCount,
    columns: columns.map((c) => ({ name: c.name, type: c.type, size: c.size })),
    rows: table.getData().map((row) => columns.map((c) => plain(row[c.name], c.type))),
  }));
}
