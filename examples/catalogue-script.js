// A data script for the "Custom" source: serves the example catalogue.
//
// "DataQuery" is a search word: only the records that contain it, in any
// letter case, are served (all of them when it is empty). A "where" clause
// is left to talp, which applies it to what the script serves.
// ProductionData starts with the header line, as a data file does: the
// record loop delivers the lines from the second on.
var header = ["sku", "name", "category", "brand", "price", "stock", "description"];
var records = [
  ["1001", "Claw hammer 450 g", "tools", "Stahlwerk", "12.50", "40", "Forged steel head, fibreglass handle"],
  ["1002", "Cordless drill 18 V", "tools", "Voltix", "89.00", "12", "Two batteries, charger and case"],
  ["1003", "Wood screws 4×40 (200)", "fasteners", "Spax", "6.90", "310", "Countersunk, Torx T20"],
  ["1004", "Wall plugs 6 mm (100)", "fasteners", "Fischer", "3.20", "0", "Nylon; for brick & concrete"],
  ["1005", "Spirit level 60 cm", "tools", "Stabila", "18.75", "25", "Two vials, \"shock-proof\" frame"],
  ["1006", "Masking tape 25 m", "paint", "Tesa", "2.95", "150", "Clean removal up to 14 days"],
  ["1007", "Paint roller 18 cm", "paint", "Färbefix", "7.40", "64", "Microfibre, for walls & ceilings"],
  ["1008", "Safety glasses", "safety", "Uvex", "9.99", "80", "Anti-fog, EN 166"],
  ["1009", "Work gloves, size 9", "safety", "Würth", "4.50", "200", "Nitrile coated, breathable"],
  ["1010", "Café table screws (set)", "fasteners", "Häfele", "5.25", "35", "Brass, 12 pieces"]
];

var query = scriptArgs.get("DataQuery");
var word = /^where /i.test(query) ? "" : query.toLowerCase();
var lines = [header.join("\t")];
for (var i = 0; i < records.length; i++) {
  var line = records[i].join("\t");
  if (line.toLowerCase().indexOf(word) >= 0) lines.push(line);
}
scriptArgs.set("HeaderData", header.join("\t"));
// Every line ends with a CR: a last line without one is never read.
scriptArgs.set("ProductionData", lines.join("\r") + "\r");
