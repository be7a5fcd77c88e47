'use strict';
(function () {
  var texts = JSON.parse(document.getElementById('texts').textContent);
  var root = document.documentElement;
  var hint = document.getElementById('hint');

  function each(selector, action) {
    Array.prototype.forEach.call(document.querySelectorAll(selector), action);
  }

  // "-1234.5" as a language writes it.
  function written(number, language) {
    var parts = number.split('.');
    if (parts[0].replace('-', '').length >= language.groupFrom) {
      parts[0] = parts[0].replace(/\B(?=(\d{3})+$)/g, language.group);
    }
    return parts.join(language.decimal);
  }

  function speak(language) {
    root.lang = language;
    each('[data-t]', function (place) {
      var text = texts[language].texts[place.getAttribute('data-t')];
      if (text !== undefined) place.textContent = text;
    });
    each('[data-n]', function (place) {
      place.textContent = written(place.getAttribute('data-n'), texts[language]);
    });
  }

  // The languages that the reader's browser asks for, the best first; null when none is here.
  function wanted() {
    var asked = navigator.languages || [navigator.language || ''];
    for (var i = 0; i < asked.length; ++i) {
      var language = asked[i].slice(0, 2).toLowerCase();
      if (Object.prototype.hasOwnProperty.call(texts, language)) return language;
    }
    return null;
  }

  var select = document.getElementById('language');
  Object.keys(texts).forEach(function (language) {
    var option = document.createElement('option');
    option.value = language;
    option.lang = language;
    option.textContent = texts[language].name;
    select.appendChild(option);
  });
  if (root.hasAttribute('data-follows')) speak(wanted() || root.lang);
  select.value = root.lang;
  select.addEventListener('change', function () { speak(select.value); });
  document.getElementById('languages').hidden = false;

  // Inputs can be taken out of the drawings one by one.
  each('input[data-input]', function (box) {
    box.disabled = false;
    box.addEventListener('change', function () {
      each('svg g[data-input="' + box.getAttribute('data-input') + '"]', function (group) {
        group.style.display = box.checked ? '' : 'none';
      });
    });
  });

  // What is pointed at in one drawing lights up in both, and is told below; a touch does the same.
  var lit = [];
  function point(event) {
    var shape = event.target.closest ? event.target.closest('.p') : null;
    lit.forEach(function (one) { one.classList.remove('on'); });
    lit = [];
    hint.hidden = !shape;
    if (!shape) return;
    hint.textContent = shape.querySelector('title').textContent;
    each('.p[data-p="' + shape.getAttribute('data-p') + '"]', function (one) {
      one.classList.add('on');
      lit.push(one);
    });
  }
  each('svg.drawing', function (drawing) {
    drawing.addEventListener('pointerover', point);
    drawing.addEventListener('pointerleave', point);
    drawing.addEventListener('click', point);
  });
}());
