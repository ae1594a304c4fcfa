// The JSON Schema of everything that the command writes as JSON. schema_document.cpp replaces each null by what it
// makes from the six classes and from the table of an output's keys.
#pragma once

constexpr const char* kJsonSchema = R"json({
  "$schema": "https://json-schema.org/draft/2020-12/schema",
  "title": "What displayinfo writes as JSON: a document, or each line of many",
  "anyOf": [
    {"$ref": "#/$defs/answer"}, {"$ref": "#/$defs/line"}, {"$ref": "#/$defs/failure"}, {"$ref": "#/$defs/row"},
    {"$ref": "#/$defs/comparison"}
  ],
  "$defs": {
    "answer": {
      "description": "What --format json writes of one machine",
      "type": "object",
      "properties": {
        "plugin": {"$ref": "#/$defs/plugin"},
        "requests": {"type": "array", "items": {"$ref": "#/$defs/request"}},
        "outputs": {"type": "array", "items": {"$ref": "#/$defs/output"}},
        "log": {"$ref": "#/$defs/log"}
      },
      "required": ["plugin", "requests", "outputs"],
      "additionalProperties": false
    },
    "line": {
      "description": "A line of --machines",
      "type": "object",
      "properties": {
        "machine": {"type": "string"},
        "plugin": {"$ref": "#/$defs/plugin"},
        "requests": {"type": "array", "items": {"$ref": "#/$defs/request"}},
        "outputs": {"type": "array", "items": {"$ref": "#/$defs/output"}},
        "log": {"$ref": "#/$defs/log"}
      },
      "required": ["machine", "plugin", "requests", "outputs"],
      "additionalProperties": false
    },
    "failure": {
      "description": "The line of a machine that could not be asked",
      "type": "object",
      "properties": {"machine": {"type": "string"}, "error": {"type": "string"}},
      "required": ["machine", "error"],
      "additionalProperties": false
    },
    "row": {"description": "A line of --format rows", "oneOf": null},
    "comparison": {
      "description": "What displayinfo compare --format json writes",
      "type": "object",
      "properties": {
        "machines": {"type": "array", "items": {"$ref": "#/$defs/comparedMachine"}},
        "doubtful": {
          "type": "array",
          "items": {
            "type": "object",
            "properties": {
              "manufacturer": {"type": "string"},
              "productCode": {"type": "integer", "minimum": 0},
              "serialNumber": {"type": "integer", "minimum": 0},
              "serial": {"type": "string"},
              "name": {"type": "string"},
              "connector": {"type": "string"},
              "deviceID": {"type": "string"},
              "old": {"type": "integer", "minimum": 0},
              "new": {"type": "integer", "minimum": 0}
            },
            "required": ["old", "new"],
            "additionalProperties": false
          }
        },
        "counts": {
          "type": "object",
          "properties": {
            "equal": {"type": "integer", "minimum": 0},
            "came": {"type": "integer", "minimum": 0},
            "gone": {"type": "integer", "minimum": 0},
            "changed": {"type": "integer", "minimum": 0},
            "unknown": {"type": "integer", "minimum": 0}
          },
          "required": ["equal", "came", "gone", "changed", "unknown"],
          "additionalProperties": false
        }
      },
      "required": ["machines", "counts"],
      "additionalProperties": false
    },
    "comparedMachine": {
      "type": "object",
      "properties": {
        "machine": {"type": "string"},
        "state": {"enum": ["came", "gone", "changed", "unknown"]},
        "monitors": {
          "type": "array",
          "items": {
            "type": "object",
            "properties": {
              "state": {"enum": ["came", "gone", "changed", "moved"]},
              "from": {"type": "string"},
              "to": {"type": "string"},
              "manufacturer": {"type": "string"},
              "productCode": {"type": "integer", "minimum": 0},
              "serialNumber": {"type": "integer", "minimum": 0},
              "serial": {"type": "string"},
              "name": {"type": "string"},
              "connector": {"type": "string"},
              "deviceID": {"type": "string"},
              "changes": {"$ref": "#/$defs/changes"}
            },
            "required": ["state"],
            "additionalProperties": false
          }
        },
        "controllers": {
          "type": "array",
          "items": {
            "type": "object",
            "properties": {
              "state": {"enum": ["came", "gone", "changed", "moved"]},
              "from": {"type": "string"},
              "to": {"type": "string"},
              "DisplayId": {"type": "string"},
              "DeviceID": {"type": "string"},
              "Name": {"type": "string"},
              "changes": {"$ref": "#/$defs/changes"}
            },
            "required": ["state"],
            "additionalProperties": false
          }
        },
        "oldError": {"type": "string"},
        "newError": {"type": "string"}
      },
      "required": ["machine", "state"],
      "additionalProperties": false
    },
    "changes": {
      "type": "array",
      "items": {
        "type": "object",
        "properties": {"property": {"type": "string"}, "old": {}, "new": {}},
        "required": ["property", "old", "new"],
        "additionalProperties": false
      }
    },
    "plugin": {
      "type": "object",
      "properties": {
        "name": {"type": "string"},
        "version": {"type": "string"},
        "interfaceVersion": {"type": "string"},
        "type": {"type": "integer"}
      },
      "required": ["name", "version", "interfaceVersion", "type"],
      "additionalProperties": false
    },
    "request": {
      "type": "object",
      "properties": {
        "classes": {"type": "array", "items": {"enum": null}},
        "instances": {"type": "array", "items": {"$ref": "#/$defs/instance"}},
        "log": {"$ref": "#/$defs/log"}
      },
      "required": ["classes", "instances"],
      "additionalProperties": false
    },
    "instance": {"oneOf": null},
    "output": {
      "description": "What the command itself knows of the output that a BIOS unit stands for: not the plug-in's",
      "type": "object",
      "properties": null,
      "required": ["unit", "deviceID"],
      "additionalProperties": false
    },
    "log": {
      "type": "array",
      "items": {
        "type": "object",
        "properties": {
          "severity": {"enum": ["error", "warning", "status", "debug", "verbose"]},
          "message": {"type": "string"}
        },
        "required": ["severity", "message"],
        "additionalProperties": false
      }
    }
  }
})json";
