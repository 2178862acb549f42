"""Rule sets of any size for the laptop, of which a detection runs the same few rules."""

EVENTS = 12


def item(number):
    """Every second rule tests a member; the ids are those of the laptop's log."""
    window = '<time type="duration" period="30" threshold="2"/>'
    first = 933001001 + number % 7
    if number % 2 == 0:
        return f'<alarmId Eventid_Max="{first}" BeginFlag="1">{window}</alarmId>'
    test = f'<gt><id>p</id><value>{number % 97}</value></gt>'
    return (f'<alarmId type="param_eventid" Eventid_Max="{first}" BeginFlag="1">{window}'
            f'<params><param id="p" key="K{number % 5}" type="int"/></params>'
            f'<condition><or type="single_logic">{test}</or></condition></alarmId>')


def rule(number):
    name = f'name="r{number}" detectScene="1"'
    if number % 5 == 4:
        return f'<codeRule {name}><detectInfo id="C{number}"/><userDefinedInfo>{{"test": {number}}}</userDefinedInfo></codeRule>'
    return f"<alarmRule {name}>{item(number)}</alarmRule>"


def entry(number):
    return (f'<Event><ID>E{number}</ID><or type="singleRule"><Rule><Rule-name>r{number}</Rule-name></Rule></or></Event>\n')


def description(number):
    return f'<Event><ID>E{number}</ID><FaultDescriptions><description id="D{number}"/></FaultDescriptions></Event>\n'


def write(folder, size):
    """Writes a rule set of so many bytes: one tree of a few events, and rules for these and for events in no tree."""
    folder.mkdir()
    events = "".join(f"<Basic-Event><ID>E{number}</ID><Name>event {number}</Name></Basic-Event>" for number in range(EVENTS))
    trees = ('<FaultTrees version="1"><Laptop><Fault-Tree id="T" version="1" type="x"><Intermediate-Event><ID>T</ID>'
             f"<Or-Gate>{events}</Or-Gate></Intermediate-Event></Fault-Tree></Laptop></FaultTrees>\n")
    number, length = 0, len(trees)
    entries, descriptions, rules = [], [], []
    while number < EVENTS or length < size:
        entries.append(entry(number))
        descriptions.append(description(number))
        rules.append(f"<rule>{rule(number)}</rule>\n")
        length += len(entries[-1]) + len(descriptions[-1]) + len(rules[-1])
        number += 1
    (folder / "FaultTrees.xml").write_text(trees)
    (folder / "FaultTreeRules.xml").write_text(
        f"<Rules><EventRules><Laptop>{''.join(entries)}</Laptop></EventRules>"
        f"<EventFaultDescriptions><Laptop>{''.join(descriptions)}</Laptop></EventFaultDescriptions>"
        f"<RuleList><Laptop>{''.join(rules)}</Laptop></RuleList></Rules>\n")
