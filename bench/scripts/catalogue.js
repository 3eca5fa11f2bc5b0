// A data script for the "Custom" source that builds a catalogue of
// scriptArgs.get("DataQuery") records (100,000 when it is no number).
var count = parseInt(scriptArgs.get("DataQuery"), 10) || 100000;
var names = ["hammer", "drill", "screw", "plug", "level", "tape", "roller", "saw", "chisel", "clamp"];
var categories = ["tools", "fasteners", "paint", "garden", "storage"];
var header = "sku\tname\tcategory\tprice\tstock";
var lines = [header];
for (var i = 0; i < count; i++) {
  lines.push((1000000 + i) + "\t" + names[i % 10] + " " + (i % 900 + 100) + " mm\t" + categories[i % 5] + "\t" +
             (i % 20000 / 100).toFixed(2) + "\t" + (i % 500));
}
lines.push("");
scriptArgs.set("HeaderData", header);
scriptArgs.set("ProductionData", lines.join("\r"));
