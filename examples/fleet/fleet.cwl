# All shards of a list, side by side, and their lines in one file: cwltool --parallel fleet.cwl job.yml
cwlVersion: v1.2
class: Workflow
requirements:
  ScatterFeatureRequirement: {}
inputs:
  devices: Directory
  list: File
  rules: Directory
  shards: string[]
steps:
  diagnose:
    run: shard.cwl
    scatter: shard
    in: {devices: devices, list: list, rules: rules, shard: shards}
    out: [lines]
  merge:
    run:
      class: CommandLineTool
      baseCommand: cat
      inputs:
        files: {type: "File[]", inputBinding: {}}
      stdout: results.jsonl
      outputs:
        all: stdout
    in: {files: diagnose/lines}
    out: [all]
outputs:
  results:
    type: File
    outputSource: merge/all
