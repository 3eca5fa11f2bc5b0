// A "Script" process: turns "[name]|[stock]" into a shelf label, the name
// in capitals and the stock as a mark.
var parts = scriptArgs.get("scriptArguments").split("|");
var stock = parseInt(parts[1], 10);
var mark = stock === 0 ? "\u2715 sold out" : stock < 30 ? "\u25D4 low" : "\u2714 in stock";
scriptArgs.set("scriptArguments", parts[0].toUpperCase() + " \u2013 " + mark);
