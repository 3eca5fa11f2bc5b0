// A "Script" process: the information in upper case.
scriptArgs.set("scriptArguments", scriptArgs.get("scriptArguments").toUpperCase());
