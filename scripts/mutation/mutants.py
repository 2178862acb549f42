"""Finds the places of a source file where one small mistake could be made, and what each would read then."""
import re
from dataclasses import dataclass

from clang.cindex import CursorKind, TypeKind

# What stands for a comparison by mistake: its border moved, and its opposite.
MISTAKEN_COMPARISON = {"<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="], ">=": [">", "<"], "==": ["!="],
                       "!=": ["=="]}
FUNCTIONS = {CursorKind.FUNCTION_DECL, CursorKind.CXX_METHOD, CursorKind.CONSTRUCTOR, CursorKind.DESTRUCTOR,
             CursorKind.FUNCTION_TEMPLATE, CursorKind.CONVERSION_FUNCTION}
NUMBERS = {TypeKind.INT, TypeKind.UINT, TypeKind.LONG, TypeKind.ULONG, TypeKind.LONGLONG, TypeKind.ULONGLONG,
           TypeKind.SHORT, TypeKind.USHORT, TypeKind.FLOAT, TypeKind.DOUBLE}
TEXTS = re.compile(r"^((const )?std::string(_view)?|const std::string(_view)? &)$")


@dataclass(frozen=True)
class Mutant:
    """Reads `replacement` instead of the bytes from `start` to `end`.

    An expression whose `is_condition` is set is converted to bool, as a condition is. A statement has `kind` "return":
    it is left out.
    """
    start: int
    end: int
    replacement: str
    kind: str
    function: str
    original: str
    is_condition: bool = False


def mutants_of(unit, path, source):
    """All mutants of the file at `path`, of which `unit` is the parsed translation unit and `source` the bytes."""
    finder = _Finder(source)
    for cursor in unit.cursor.get_children():
        if cursor.location.file is not None and cursor.location.file.name == path:
            finder.visit(cursor, [])
    found = {}
    for mutant in finder.found:
        found.setdefault((mutant.start, mutant.end, mutant.replacement), mutant)
    return sorted(found.values(), key=lambda mutant: (mutant.start, -mutant.end, mutant.replacement))


class _Finder:
    def __init__(self, source):
        self.source = source
        self.found = []
        self.function = ""

    def visit(self, cursor, above):
        """`above` are the cursors from the file's to the one above `cursor`."""
        if _is_constant_declaration(cursor, self.text(cursor)):
            return
        outer = self.function
        if cursor.kind in FUNCTIONS:
            self.function = _name_of(cursor)
        if self.function:
            self.take(cursor, above)
        for child in cursor.get_children():
            self.visit(child, above + [cursor])
        self.function = outer

    def text(self, cursor):
        return self.source[cursor.extent.start.offset:cursor.extent.end.offset].decode()

    def between(self, start, end):
        return self.source[start:end].decode()

    def add(self, start, end, replacement, kind, is_condition=False):
        self.found.append(Mutant(start, end, replacement, kind, self.function, self.between(start, end), is_condition))

    def take(self, cursor, above):
        kind = cursor.kind
        if kind == CursorKind.BINARY_OPERATOR:
            self.take_operator(*list(cursor.get_children()))
        elif kind == CursorKind.CALL_EXPR and cursor.spelling.startswith("operator"):
            self.take_written_operator(cursor)
        elif kind == CursorKind.CALL_EXPR:
            self.take_arguments(cursor, above)
        elif kind in (CursorKind.IF_STMT, CursorKind.WHILE_STMT, CursorKind.CONDITIONAL_OPERATOR):
            self.take_condition(cursor)
        elif kind in (CursorKind.INTEGER_LITERAL, CursorKind.FLOATING_LITERAL, CursorKind.CXX_BOOL_LITERAL_EXPR,
                      CursorKind.STRING_LITERAL):
            self.take_constant(cursor, above)
        elif kind in (CursorKind.RETURN_STMT, CursorKind.CONTINUE_STMT, CursorKind.BREAK_STMT):
            self.take_return(cursor, above)

    def take_operator(self, left, right):
        start, end = left.extent.start.offset, right.extent.end.offset
        operator = _without_comments(self.between(left.extent.end.offset, right.extent.start.offset))
        first, second = self.text(left), self.text(right)
        for mistaken in MISTAKEN_COMPARISON.get(operator, []):
            self.add(start, end, f"{first} {mistaken} {second}", "comparison")
        if operator in ("&&", "||"):
            other = "||" if operator == "&&" else "&&"
            self.add(start, end, f"({first}) {other} ({second})", "comparison", True)
            self.add(start, end, first, "comparison", True)
            self.add(start, end, second, "comparison", True)

    # Operators that a class defines. C++20 calls operator== for "!=" and operator<=> for "<": the text tells what is meant.
    def take_written_operator(self, cursor):
        children = list(cursor.get_children())
        if len(children) != 3 or self.text(children[1]) not in MISTAKEN_COMPARISON:
            return
        operands = sorted((children[0], children[2]), key=lambda child: child.extent.start.offset)
        if operands[0].extent.end.offset <= children[1].extent.start.offset < operands[1].extent.start.offset:
            self.take_operator(*operands)

    def take_condition(self, cursor):
        condition = next((child for child in cursor.get_children() if child.kind.is_expression()), None)
        declares = any(child.kind == CursorKind.VAR_DECL for child in cursor.get_children())
        if condition is None or declares or re.match(r"if\s+constexpr", self.text(cursor)):
            return
        text = self.text(condition)
        replacement = text[1:] if text.startswith("!") and _is_simple(text) else f"!({text})"
        if not re.search(r"&&|\|\||[=!<>]=|[ ][<>][ ]", text):
            self.add(condition.extent.start.offset, condition.extent.end.offset, replacement, "comparison", True)

    def take_constant(self, cursor, above):
        text = self.text(cursor)
        kinds = {CursorKind.INTEGER_LITERAL: r"[0-9][0-9a-fA-FxXuUlL']*", CursorKind.FLOATING_LITERAL: r"[0-9].*",
                 CursorKind.CXX_BOOL_LITERAL_EXPR: r"true|false", CursorKind.STRING_LITERAL: r'".+"'}
        if not re.fullmatch(kinds[cursor.kind], text, re.DOTALL) or above[-1].type.kind == TypeKind.POINTER and text == "0":
            return
        replacement = {"true": "false", "false": "true"}.get(text) or ('""' if text[0] == '"' else f"({text} + 1)")
        self.add(cursor.extent.start.offset, cursor.extent.end.offset, replacement, "constant")

    def take_return(self, cursor, above):
        start, end = cursor.extent.start.offset, cursor.extent.end.offset
        semicolon = self.source.index(b";", end)
        if self.between(end, semicolon).strip() == "" and _is_early(cursor, above):
            self.add(start, semicolon + 1, "", "return")
        values = list(cursor.get_children())
        if values and cursor.kind == CursorKind.RETURN_STMT and values[0].type.kind == TypeKind.BOOL:
            text = self.text(values[0])
            if text not in ("true", "false") and not re.search(r"&&|\|\||[=!<>]=|[ ][<>][ ]", text):
                self.add(values[0].extent.start.offset, values[0].extent.end.offset, f"!({text})", "return", True)

    def take_arguments(self, cursor, above):
        given = list(cursor.get_arguments())
        called = cursor.referenced
        declared = list(called.get_arguments()) if called is not None else []
        if not given or any(argument is None or self.text(argument) == "" for argument in given):
            return
        if called is not None and called.kind == CursorKind.CONSTRUCTOR and (
                len(given) == 1 or above[-1].kind == CursorKind.CONSTRUCTOR or
                not re.match(rf"[\w:]*{called.spelling}[({{<]", self.text(cursor))):
            return # a conversion that nobody wrote, a base class or member, or a variable with its name
        if cursor.spelling == "reserve":
            return # changes no answer
        for number, argument in enumerate(given):
            if number < len(declared):
                for mistaken in _mistaken_argument(self.text(argument), declared[number].type):
                    self.replace(cursor, [(argument, mistaken)])
            changes = [parameter.type for parameter in declared[number:number + 2] if _is_changed(parameter.type)]
            if number + 1 < len(given) and not changes and _are_alike(argument, given[number + 1]):
                after = given[number + 1]
                self.replace(cursor, [(argument, self.text(after)), (after, self.text(argument))])

    # Replaces arguments of a call, the whole of which is the mutant, as an argument may be no value of its own.
    def replace(self, call, changes):
        start, end = call.extent.start.offset, call.extent.end.offset
        text = self.between(start, end)
        for argument, mistaken in sorted(changes, key=lambda change: -change[0].extent.start.offset):
            low, high = argument.extent.start.offset - start, argument.extent.end.offset - start
            text = text[:low] + mistaken + text[high:]
        if text != self.between(start, end) and self.source[end - 1:end] in (b")", b"}"):
            self.add(start, end, text, "argument")


def _is_constant_declaration(cursor, text):
    if cursor.kind in (CursorKind.STATIC_ASSERT, CursorKind.ENUM_DECL, CursorKind.TEMPLATE_NON_TYPE_PARAMETER,
                       CursorKind.ASM_STMT):
        return True
    is_variable = cursor.kind in (CursorKind.VAR_DECL, CursorKind.FIELD_DECL)
    return is_variable and ("constexpr" in text or cursor.type.kind == TypeKind.CONSTANTARRAY)


def _name_of(cursor):
    parent = cursor.semantic_parent
    if parent is not None and parent.kind in (CursorKind.CLASS_DECL, CursorKind.STRUCT_DECL, CursorKind.CLASS_TEMPLATE):
        return f"{parent.spelling}::{cursor.spelling}"
    return cursor.spelling


def _without_comments(text):
    return re.sub(r"//[^\n]*|/\*.*?\*/", "", text, flags=re.DOTALL).strip()


def _is_simple(text):
    return re.fullmatch(r"!?[\w.:]+(->[\w.:]+)*(\([^()]*\))?", text) is not None


# A statement that can be left out: below a condition, with more of the function to come where it ends.
def _is_early(cursor, above):
    below = cursor
    for parent in reversed(above):
        if parent.kind == CursorKind.LAMBDA_EXPR or parent.kind in FUNCTIONS:
            return False
        if parent.kind in (CursorKind.CASE_STMT, CursorKind.DEFAULT_STMT):
            return False
        if parent.kind == CursorKind.COMPOUND_STMT and below.kind == CursorKind.IF_STMT:
            if list(parent.get_children())[-1] != below:
                return True
        if cursor.kind != CursorKind.RETURN_STMT and parent.kind in (CursorKind.FOR_STMT, CursorKind.WHILE_STMT,
                                                                     CursorKind.CXX_FOR_RANGE_STMT, CursorKind.DO_STMT):
            return cursor.kind == CursorKind.BREAK_STMT
        below = parent
    return False


def _is_changed(declared):
    return declared.kind == TypeKind.LVALUEREFERENCE and not declared.get_pointee().is_const_qualified()


def _are_alike(first, second):
    types = [re.sub(r"^const | &$", "", argument.type.get_canonical().spelling) for argument in (first, second)]
    return types[0] == types[1] and "lambda" not in types[0]


def _mistaken_argument(text, declared):
    if declared.kind == TypeKind.BOOL:
        return [f"!({text})"] if text not in ("true", "false") else []
    if declared.get_canonical().kind in NUMBERS and not re.fullmatch(r"[0-9.]+", text):
        return [f"({text}) + 1"]
    if TEXTS.match(declared.spelling) and text != '""' and not text.startswith('"'):
        return ["std::string()"]
    return []
