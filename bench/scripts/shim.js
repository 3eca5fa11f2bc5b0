// scriptArgs for the bare duk interpreter, so that it runs the data scripts
// as the engine inside talp does.
var scriptArgs = (function () {
  var values = {};
  return {
    get: function (name) { return values.hasOwnProperty(name) ? values[name] : ""; },
    set: function (name, value) { values[name] = String(value); },
    isDefined: function (name) { return values.hasOwnProperty(name); },
    clear: function () { values = {}; }
  };
})();
